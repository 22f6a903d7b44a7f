// Reading a record of the raw data file: its code and its fields. docs/formats/rw5.md shows them.
#pragma once

#include <optional>
#include <string_view>

namespace tarvex {

/// "SP" of "SP,PN4,N 5000.0000,...".
constexpr std::string_view RawCode(std::string_view record) {
  return record.substr(0, record.find(','));
}

/// The text of a field by its tag of two characters ("PN", "N "); the description, which may hold
/// anything and comes last, is left out.
std::optional<std::string_view> RawField(std::string_view record, std::string_view tag);

/// The point that a record stores: PN of SP and GPS, FP of SS and TR; nothing for other records.
std::optional<std::string_view> StoredPointId(std::string_view record);

/// The point of the comment that takes the last store of it back; nothing for other records.
std::optional<std::string_view> TakenBackPointId(std::string_view record);

/// True for the codes of records that were measured (GPS, SS, TR).
bool IsMeasured(std::string_view record);

}  // namespace tarvex
