#include "gnss/nmea/sentences.h"

#include <array>
#include <cstdint>

#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_number.h"

namespace tarvex {
namespace {

constexpr std::array kSentences = {
    Sentence{.type = "GSA", .anyTalker = true, .read = ReadGsa},
    Sentence{.type = "GGA",
             .anyTalker = true,
             .carries = Carries::Position,
             .read = ReadGga,
             .nmeaPos = 1,
             .timeField = 1},
    Sentence{.type = "GST", .anyTalker = true, .carries = Carries::Precision, .read = ReadGst},
    Sentence{.type = "GLL",
             .anyTalker = true,
             .carries = Carries::Position,
             .read = ReadGll,
             .nmeaPos = 2,
             .timeField = 5},
    Sentence{.type = "GNS",
             .talkers = "GP GL GN",
             .anyTalker = true,
             .carries = Carries::Position,
             .read = ReadGns,
             .nmeaPos = 4,
             .timeField = 1},
    Sentence{
        .type = "GGK", .carries = Carries::Position, .read = ReadGgk, .nmeaPos = 8, .timeField = 1},
    Sentence{.type = "GGQ",
             .carries = Carries::Position,
             .read = ReadGgq,
             .nmeaPos = 16,
             .timeField = 1},
    Sentence{.type = "PTNL,GGK,",
             .talkers = "",
             .carries = Carries::Position,
             .read = ReadPtnlGgk,
             .nmeaPos = 32,
             .timeField = 2},
    Sentence{.type = "RRE", .carries = Carries::Precision, .read = ReadRre},
    Sentence{.type = "RD1", .talkers = "", .read = ReadRd1},
};

constexpr std::size_t kTalkerAt = 1;
constexpr std::size_t kTypeAt = 3;
constexpr std::size_t kCommaAt = 6;

// Three letters as one number.
constexpr std::uint32_t Letters(std::string_view three) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(three[0])) << 16 |
         static_cast<std::uint32_t>(static_cast<unsigned char>(three[1])) << 8 |
         static_cast<unsigned char>(three[2]);
}

// What a line is found by: three letters behind the talker, or the first three of a proprietary
// sentence with a mark.
constexpr std::uint32_t kProprietary = 1U << 24;

constexpr auto kKeys = [] {
  std::array<std::uint32_t, kSentences.size()> keys{};
  for (std::size_t i = 0; i < keys.size(); ++i) {
    keys[i] = Letters(kSentences[i].type) | (kSentences[i].talkers.empty() ? kProprietary : 0U);
  }
  return keys;
}();

constexpr bool IsUpper(char c) {
  return c >= 'A' && c <= 'Z';
}

bool TalkerKnown(const Sentence& sentence, std::string_view talker, bool anyTalker) {
  constexpr std::size_t kStep = 3;  // two letters and a blank
  for (std::size_t at = 0; at < sentence.talkers.size(); at += kStep) {
    const bool same = sentence.talkers[at] == talker[0] && sentence.talkers[at + 1] == talker[1];
    if (same) return true;
  }
  return anyTalker && sentence.anyTalker && IsUpper(talker[0]) && IsUpper(talker[1]);
}

}  // namespace

const Sentence* FindSentence(std::string_view line, bool anyTalker) {
  if (line.size() <= kTypeAt || line[0] != '$') return nullptr;
  const std::uint32_t own = Letters(line.substr(kTalkerAt)) | kProprietary;
  const bool talks = line.size() > kCommaAt && line[kCommaAt] == ',';
  const std::uint32_t talked = talks ? Letters(line.substr(kTypeAt)) : own;
  for (std::size_t i = 0; i < kKeys.size(); ++i) {
    if (kKeys[i] != talked && kKeys[i] != own) continue;
    const Sentence& sentence = kSentences[i];
    const bool known = sentence.talkers.empty()
                           ? line.substr(kTalkerAt).starts_with(sentence.type)
                           : TalkerKnown(sentence, line.substr(kTalkerAt, 2), anyTalker);
    if (known) return &sentence;
  }
  return nullptr;
}

bool IsPositionSentence(int nmeaPos) {
  for (const Sentence& sentence : kSentences) {
    if (sentence.carries == Carries::Position && sentence.nmeaPos == nmeaPos) return true;
  }
  return false;
}

std::string PositionSentenceChoices() {
  std::string choices;
  std::string last;
  for (const Sentence& sentence : kSentences) {
    if (sentence.carries != Carries::Position) continue;
    if (!last.empty()) choices += choices.empty() ? last : ", " + last;
    const std::string_view type = sentence.type;
    last = std::to_string(sentence.nmeaPos) + " " +
           std::string(type.substr(0, type.size() - (type.ends_with(',') ? 1 : 0)));
  }
  return choices + " or " + last;
}

std::int32_t EpochOfPosition(std::string_view line) {
  const Sentence* const sentence = FindSentence(line, true);
  if (sentence == nullptr || sentence->carries != Carries::Position) return kNoEpoch;
  return MillisecondsOfDay(FirstField(SkipFields(line, ',', sentence->timeField), ','));
}

}  // namespace tarvex
