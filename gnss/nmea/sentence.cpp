#include "gnss/nmea/sentence.h"

#include <cstdint>

namespace tarvex {
namespace {

constexpr std::size_t kTypeAt = 3;
constexpr std::size_t kPrefixLength = 7;

constexpr std::uint32_t Letters(std::string_view three) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(three[0])) << 16 |
         static_cast<std::uint32_t>(static_cast<unsigned char>(three[1])) << 8 |
         static_cast<unsigned char>(three[2]);
}

constexpr bool IsUpper(char c) {
  return c >= 'A' && c <= 'Z';
}

SentenceKind KindOfType(std::string_view type) {
  switch (Letters(type)) {
    case Letters("GGA"):
      return SentenceKind::Gga;
    case Letters("GLL"):
      return SentenceKind::Gll;
    case Letters("GNS"):
      return SentenceKind::Gns;
    case Letters("GST"):
      return SentenceKind::Gst;
    case Letters("GSA"):
      return SentenceKind::Gsa;
    case Letters("GGK"):
      return SentenceKind::Ggk;
    case Letters("GGQ"):
      return SentenceKind::Ggq;
    case Letters("RRE"):
      return SentenceKind::Rre;
    default:
      return SentenceKind::Other;
  }
}

bool TalkerAllowed(SentenceKind kind, std::string_view talker, bool anyTalker) {
  if (talker == "GP") return true;
  switch (kind) {
    case SentenceKind::Gns:
      if (talker == "GL" || talker == "GN") return true;
      [[fallthrough]];
    case SentenceKind::Gga:
    case SentenceKind::Gll:
    case SentenceKind::Gst:
    case SentenceKind::Gsa:
      return anyTalker && IsUpper(talker[0]) && IsUpper(talker[1]);
    default:
      return false;
  }
}

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

SentenceKind KindOf(std::string_view line, bool anyTalker) {
  if (line.size() < 4 || line[0] != '$') return SentenceKind::Other;
  if (line.size() >= kPrefixLength && line[kPrefixLength - 1] == ',') {
    const SentenceKind kind = KindOfType(line.substr(kTypeAt, 3));
    if (kind != SentenceKind::Other) {
      return TalkerAllowed(kind, line.substr(1, 2), anyTalker) ? kind : SentenceKind::Other;
    }
  }
  if (line.starts_with("$PTNL,GGK,")) return SentenceKind::PtnlGgk;
  return line.starts_with("$RD1") ? SentenceKind::Rd1 : SentenceKind::Other;
}

std::string_view SentenceIn(std::string_view line) {
  constexpr std::string_view kBlanks(" \t\r\0", 4);
  line = line.substr(0, line.find_last_not_of(kBlanks) + 1);
  const std::size_t begin = line.rfind('$');
  return begin == std::string_view::npos ? line : line.substr(begin);
}

bool CarriesPosition(SentenceKind kind) {
  switch (kind) {
    case SentenceKind::Gga:
    case SentenceKind::Gll:
    case SentenceKind::Gns:
    case SentenceKind::Ggk:
    case SentenceKind::Ggq:
    case SentenceKind::PtnlGgk:
      return true;
    default:
      return false;
  }
}

bool ChecksumStands(std::string_view line) {
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
