// The bytes of an entry of the change journal (docs/formats/redo.md).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/journal/change_journal.h"

namespace tarvex {

inline constexpr std::string_view kChangeMagic = "TVXREDO2";
/// Of one file, without a series, as programs before 0.2 left it.
inline constexpr std::string_view kOldChangeMagic = "TVXREDO1";
inline constexpr std::size_t kChangeHeaderSize = 32;

struct ChangeEntry {
  std::uint64_t series = 0;
  std::uint64_t number = 0;  ///< in the series, from 0
  JobChange change;
};

std::string EncodeEntry(const ChangeEntry& entry);

/// Takes the entry off the front of `bytes`; nothing when it is not whole.
std::optional<ChangeEntry> TakeEntry(std::string_view& bytes);

/// A journal of an older program; nothing when it is not whole.
std::optional<JobChange> DecodeOldJournal(std::string_view bytes);

}  // namespace tarvex
