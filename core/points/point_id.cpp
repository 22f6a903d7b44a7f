#include "core/points/point_id.h"

#include <algorithm>
#include <array>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// The value of the digit run at the front of `text`.
std::uint64_t RunValue(std::string_view text) {
  std::uint64_t value = 0;
  for (const char c : text) {
    if (!IsDigit(c)) break;
    value = value * 10 + static_cast<std::uint64_t>(c - '0');
  }
  return value;
}

int CompareUpperCase(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const auto x = static_cast<unsigned char>(UpperCase(a[i]));
    const auto y = static_cast<unsigned char>(UpperCase(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

std::size_t FindDigit(std::string_view text) {
  const auto at = std::find_if(text.begin(), text.end(), IsDigit);
  return static_cast<std::size_t>(at - text.begin());
}

// An id taken apart at its first digit run.
struct IdParts {
  std::string_view prefix;
  std::string_view digits;
  std::string_view suffix;
};

IdParts SplitAtDigits(std::string_view id) {
  const std::size_t first = FindDigit(id);
  std::size_t end = first;
  while (end < id.size() && IsDigit(id[end])) ++end;
  return {id.substr(0, first), id.substr(first, end - first), id.substr(end)};
}

// Makes room by dropping the nearest character that is not a digit at or before the 9th position.
void DropOneLetter(std::string& id) {
  for (std::size_t i = std::min(id.size(), kPointIdLength); i-- > 0;) {
    if (IsDigit(id[i])) continue;
    id.erase(i, 1);
    return;
  }
}

std::string Advanced(std::string_view id, long long increment) {
  const IdParts parts = SplitAtDigits(id);
  const long long number = LeadingInteger(parts.digits);
  std::string next(parts.prefix);
  if (FindDigit(parts.suffix) < parts.suffix.size()) {
    AppendInteger(next, number);
    next += Advanced(parts.suffix, increment);
    if (next.size() > kPointIdLength) DropOneLetter(next);
  } else {
    AppendInteger(next, number + increment);
    next += parts.suffix;
  }
  return next;
}

std::string WithoutDigitsAdvanced(std::string_view id, long long increment) {
  std::string next(id);
  if (next.size() < kPointIdLength) {
    AppendInteger(next, std::max(increment, 1LL));
    return next;
  }
  for (std::size_t i = next.size(); i-- > 0;) {
    const auto byte = static_cast<unsigned char>(next[i]);
    if (next[i] == 'Z' || byte >= 0x7E) continue;  // a byte of a UTF-8 character stays
    ++next[i];
    break;
  }
  return next;
}

char StoredCharacter(char c) {
  if (IsControl(c)) return ' ';
  return c == '-' || c == ',' ? '_' : UpperCase(c);
}

}  // namespace

int ComparePointIds(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (IsDigit(a[i]) && IsDigit(b[i])) {
      const std::uint64_t x = RunValue(a.substr(i));
      const std::uint64_t y = RunValue(b.substr(i));
      if (x != y) return x < y ? -1 : 1;
    } else if (UpperCase(a[i]) != UpperCase(b[i])) {
      return CompareUpperCase(a.substr(i), b.substr(i));
    }
  }
  return CompareUpperCase(a, b);
}

PointId NormalisePointId(std::string_view id) {
  while (!id.empty() && (id[0] == ' ' || IsControl(id[0]))) id.remove_prefix(1);
  char text[kPointIdLength + 1];  // one more, which tells where a character may be cut
  const std::size_t length = std::min(id.size(), sizeof text);
  for (std::size_t i = 0; i < length; ++i) text[i] = StoredCharacter(id[i]);
  return PointId(std::string_view(text, length));
}

long long PointIdNumber(std::string_view id) {
  return id.empty() || !IsDigit(id[0]) ? 0 : LeadingInteger(id);
}

PointId NextPointId(const PointId& id, long long increment) {
  const std::string_view text = id.view();
  const bool hasDigits = FindDigit(text) < text.size();
  return PointId(hasDigits ? Advanced(text, increment) : WithoutDigitsAdvanced(text, increment));
}

// A digit run becomes its length as a digit character, which still sorts between "/" and ":"
// against anything that is not a digit, followed by its digits; 9 characters make at most 14 bytes.
std::optional<PointIdKey> MakePointIdKey(std::string_view id) {
  std::array<unsigned char, 16> key{};
  std::size_t used = 0;
  for (std::size_t i = 0; i < id.size();) {
    if (used + 2 > key.size()) return std::nullopt;
    if (!IsDigit(id[i])) {
      key[used++] = static_cast<unsigned char>(UpperCase(id[i++]));
      continue;
    }
    std::size_t end = i;
    while (end < id.size() && IsDigit(id[end])) ++end;
    const std::size_t length = end - i;
    if (length > 9 || (length > 1 && id[i] == '0') || used + length + 1 > key.size()) {
      return std::nullopt;
    }
    key[used++] = static_cast<unsigned char>('0' + length);
    for (; i < end; ++i) key[used++] = static_cast<unsigned char>(id[i]);
  }
  PointIdKey result;
  for (std::size_t i = 0; i < 8; ++i) {
    result.high = result.high << 8U | key[i];
    result.low = result.low << 8U | key[i + 8];
  }
  return result;
}

}  // namespace tarvex
