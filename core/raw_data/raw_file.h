// The raw data file beside the coordinate file (extension "rw5"): a journal that is appended to and
// never rewritten.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "core/job/job.h"

namespace tarvex {

enum class [[nodiscard]] RawFileResult : int {
  Written = 1,
  Dropped = 0  ///< the file cannot be opened or written; the coordinate file keeps the point
};

/// Appends the record as it is (it starts with "\n") and makes it durable; a missing file is
/// created with its header first. A record that cannot be written whole leaves the file as it was.
RawFileResult AppendRawRecord(Job& job, std::string_view record);

/// The same, and why it failed.
FileStatus AddRawRecords(Job& job, std::span<const std::string> records);

/// Appends the records in order, each by one write, durable together.
RawFileResult AppendRawRecords(Job& job, std::span<const std::string> records);

/// The records with which work on a raw file goes on, to be written together with the first of it:
/// the collector's identification line when no line begins with it, then the date and time. Empty
/// for a raw file that does not exist or is empty, which gets its header.
std::string RawOpeningRecords(Job& job);

/// Opens the raw file at its end, locked and created when it is missing, for a unit of the job.
FileStatus OpenRawFile(Job& job, std::unique_ptr<File>& file, std::uint64_t& size);

/// What is written at the end of a raw file of this size: the records, behind the header when the
/// file is empty.
std::string RawFileAddition(Job& job, std::uint64_t size, std::string_view records);

/// Path of the job's raw file.
std::string RawFilePath(const Job& job);

}  // namespace tarvex
