// The bytes of the coordinate file, both layouts, in one place. All numbers are little-endian; text
// is NUL-terminated and NUL-padded in its field. docs/formats/crd.md describes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/points/point.h"
#include "platform/clock.h"

namespace tarvex {

/// Where the records of a file are.
struct RecordLayout {
  std::uint64_t headerSize = 0;
  std::uint64_t recordSize = 0;
};

/// Numeric layout: 56-byte records, record 0 is the header, record k is point number k.
namespace numeric_layout {

inline constexpr std::size_t kRecordSize = 56;
inline constexpr RecordLayout kLayout{.headerSize = kRecordSize, .recordSize = kRecordSize};

/// The header of a file: highest point number and creation date as YYYY.MMDD.
std::string EncodeHeader(long long highestNumber, const LocalTime& created);
/// The first 8 bytes of the header, which hold the highest point number.
std::string EncodeHighestNumber(long long highestNumber);
/// The highest point number; -1 when the bytes hold no count that a file of points can have.
long long DecodeHighestNumber(std::string_view header);

/// Coordinates and description; the id is where the record is.
void AppendRecord(std::string& bytes, const Point& point);
/// Decodes coordinates and description; the id is left to the caller. `bytes` holds kRecordSize
/// bytes.
void DecodeRecord(const char* bytes, Point& point);
/// The content of the slots of numbers that were jumped over: coordinates 0, description " ".
std::string FillerRecord();

}  // namespace numeric_layout

/// Alphanumeric layout: a 104-byte header, then 66-byte records in ascending order of point id.
namespace alphanumeric_layout {

inline constexpr std::size_t kHeaderSize = 104;
inline constexpr std::size_t kRecordSize = 66;
inline constexpr std::size_t kIdOffset = 56;
inline constexpr std::size_t kIdSize = 10;
inline constexpr RecordLayout kLayout{.headerSize = kHeaderSize, .recordSize = kRecordSize};

enum class Signature { None, Older, Sorted };

std::string EncodeHeader(const LocalTime& created);
/// Reads the signature of the first 104 bytes of a file.
Signature DecodeSignature(std::string_view bytes);
/// Replaces the signature of an older header by that of a sorted file; the other bytes stay.
void MarkSorted(std::string& header);

void AppendRecord(std::string& bytes, const Point& point);
/// `bytes` holds kRecordSize bytes.
void DecodeRecord(const char* bytes, Point& point);
PointId DecodeId(const char* record);

}  // namespace alphanumeric_layout
}  // namespace tarvex
