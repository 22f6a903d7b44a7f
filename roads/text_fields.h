// The line layer of the road files: lines cut to the length that counts, split at commas.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace tarvex {

/// A line split at `,`; a field past the last comma is missing, an empty one is there. Only the
/// first kMost fields are kept.
class CommaFields {
 public:
  static constexpr std::size_t kMost = 8;

  explicit CommaFields(std::string_view line);

  /// Number of fields found, at most kMost.
  std::size_t count() const { return count_; }
  /// Fields are counted from 1, as the formats do.
  bool Has(std::size_t number) const { return number <= count_; }
  /// Empty when the field is missing.
  std::string_view operator[](std::size_t number) const;
  /// True when the field is there and holds more than blanks.
  bool Given(std::size_t number) const;
  double Number(std::size_t number) const;
  /// A packed DDD.MMSS angle of the field, with its sign, in radians.
  double PackedRadians(std::size_t number) const;

 private:
  std::array<std::string_view, kMost> fields_;
  std::size_t count_ = 0;
};

/// Takes lines off a text and counts them from 1; each is cut to its first `significant` bytes. The
/// byte order mark that editors put before UTF-8 is no part of the first line.
class NumberedLines {
 public:
  NumberedLines(std::string_view text, std::size_t significant);

  /// False at the end of the text.
  bool Next(std::string_view& line);
  int number() const { return number_; }

 private:
  std::string_view rest_;
  std::size_t significant_;
  int number_ = 0;
};

}  // namespace tarvex
