#include "gnss/nmea/sentence_line.h"

namespace tarvex {
namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

unsigned char ExclusiveOr(std::string_view text) {
  unsigned sum = 0;
  for (const char c : text) sum ^= static_cast<unsigned char>(c);
  return static_cast<unsigned char>(sum);
}

}  // namespace

std::string_view SentenceIn(std::string_view line) {
  constexpr std::string_view kBlanks(" \t\r\0", 4);
  line = line.substr(0, line.find_last_not_of(kBlanks) + 1);
  // Nearly every line is one sentence, and looking forward is quick.
  if (line.starts_with('$') && line.find('$', 1) == std::string_view::npos) return line;
  const std::size_t begin = line.rfind('$');
  return begin == std::string_view::npos ? line : line.substr(begin);
}

bool HasGoodChecksum(std::string_view line) {
  return line.starts_with('$') && line.find('*') != std::string_view::npos && ChecksumHolds(line);
}

bool ChecksumHolds(std::string_view line) {
  const std::size_t star = line.rfind('*');
  if (star == std::string_view::npos || line[0] != '$') return true;
  if (star + 3 != line.size()) return false;
  const int high = HexDigit(line[star + 1]);
  const int low = HexDigit(line[star + 2]);
  return high >= 0 && low >= 0 && ExclusiveOr(line.substr(1, star - 1)) == high * 16 + low;
}

}  // namespace tarvex
