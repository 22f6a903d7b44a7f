#include "app/cli/angle_entry.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

// The marks behind a number; a byte sequence a row, the longest first.
enum class Mark { Degrees, Minutes, Seconds, Joint };

struct MarkText {
  std::string_view text;
  Mark mark;
};

constexpr MarkText kMarks[] = {
    {"\xE2\x80\xB2", Mark::Minutes},  // prime
    {"\xE2\x80\xB3", Mark::Seconds},  // double prime
    {"\xE2\x80\x99", Mark::Minutes},  // right quotation marks, as text programs make them
    {"\xE2\x80\x9D", Mark::Seconds},
    {"\xC2\xB0", Mark::Degrees},  // degree sign, in UTF-8 and in Latin 1
    {"\xC2\xBA", Mark::Degrees},
    {"\xB0", Mark::Degrees},
    {"''", Mark::Seconds},
    {"'", Mark::Minutes},
    {"\"", Mark::Seconds},
    {"d", Mark::Degrees},
    {"D", Mark::Degrees},
    {":", Mark::Joint},
};

struct Part {
  double value = 0.0;
  bool negative = false;
  bool decimals = false;
  std::optional<Mark> mark;
};

// One angle, or the height: its parts and the letter that says its side of the earth.
struct Angle {
  std::vector<Part> parts;
  char letter = 0;
};

class EntryReader {
 public:
  explicit EntryReader(std::string_view line) : rest_(line) {}

  // Everything on the line, letters included; false at what belongs to no angle.
  bool ReadAll() {
    while (SkipBlanks(), !rest_.empty()) {
      if (TakeLetter()) continue;
      Part part;
      if (!TakeNumber(part)) return false;
      TakeMark(part);
      Put(part);
    }
    return true;
  }

  std::vector<Angle>& angles() { return angles_; }
  std::string_view rest() const { return rest_; }

 private:
  void SkipBlanks() {
    blankBefore_ = false;
    while (!rest_.empty() && std::string_view(" \t,;").find(rest_[0]) != std::string_view::npos) {
      blankBefore_ = true;
      rest_.remove_prefix(1);
    }
    if (blankBefore_) joint_ = false;
  }

  // A letter in front opens its angle, one behind closes it.
  bool TakeLetter() {
    const char letter = UpperCase(rest_.substr(0, 1))[0];
    if (letter != 'N' && letter != 'S' && letter != 'E' && letter != 'W') return false;
    rest_.remove_prefix(1);
    const bool behind = !angles_.empty() && angles_.back().letter == 0 && !lettersInFront_;
    if (behind) {
      angles_.back().letter = letter;
    } else {
      lettersInFront_ = true;
      angles_.push_back({{}, letter});
    }
    closed_ = behind;
    return true;
  }

  bool TakeNumber(Part& part) {
    part.negative = rest_[0] == '-';
    if (rest_[0] == '-' || rest_[0] == '+') rest_.remove_prefix(1);
    const std::size_t end = std::min(rest_.find_first_not_of("0123456789."), rest_.size());
    const auto value = ParseNumber(rest_.substr(0, end));
    if (!value) return false;
    part.value = *value;
    part.decimals = rest_.substr(0, end).find('.') != std::string_view::npos;
    rest_.remove_prefix(end);
    return true;
  }

  void TakeMark(Part& part) {
    const bool wasJoint = joint_;
    joint_ = false;
    for (const MarkText& known : kMarks) {
      if (!rest_.starts_with(known.text)) continue;
      rest_.remove_prefix(known.text.size());
      part.mark = known.mark;
      joint_ = known.mark == Mark::Joint;
      break;
    }
    // "47-30-15.5": a dash right between two numbers joins them, elsewhere it is a minus sign.
    const bool dash = !part.mark && rest_.size() > 1 && rest_[0] == '-' && IsDigit(rest_[1]);
    if (dash) {
      rest_.remove_prefix(1);
      part.mark = Mark::Joint;
      joint_ = true;
    }
    afterJoint_ = wasJoint;
  }

  // To the angle that is open, or to a new one: after degrees come minutes, then seconds. A number
  // without a mark apart from one with a mark begins something new.
  void Put(const Part& part) {
    const bool fresh = angles_.empty() || closed_ || part.negative || Full(angles_.back()) ||
                       StandsApart(part, angles_.back()) ||
                       (part.mark == Mark::Degrees && !angles_.back().parts.empty());
    const bool opened = !angles_.empty() && angles_.back().parts.empty();
    if (fresh && !afterJoint_ && !(opened && !closed_)) angles_.push_back({});
    angles_.back().parts.push_back(part);
    closed_ = false;
  }

  bool StandsApart(const Part& part, const Angle& angle) const {
    if (part.mark || !blankBefore_ || angle.parts.empty()) return false;
    const Part& last = angle.parts.back();
    return last.mark && *last.mark != Mark::Joint;
  }

  // True when no further part can belong to it: a third one, one with decimals, seconds.
  bool Full(const Angle& angle) const {
    if (angle.parts.empty()) return false;
    const Part& last = angle.parts.back();
    if (last.mark == Mark::Joint) return false;
    const bool joined = angle.parts.size() > 1 && angle.parts[0].mark == Mark::Joint;
    return angle.parts.size() == 3 || last.decimals || last.mark == Mark::Seconds || joined;
  }

  std::string_view rest_;
  std::vector<Angle> angles_;
  bool lettersInFront_ = false;
  bool closed_ = false;
  bool joint_ = false;
  bool afterJoint_ = false;
  bool blankBefore_ = false;
};

std::optional<double> DegreesOf(const Angle& angle) {
  if (angle.parts.empty() || angle.parts.size() > 3) return std::nullopt;
  double degrees = 0.0;
  double unit = 1.0;
  for (std::size_t i = 0; i < angle.parts.size(); ++i, unit /= 60.0) {
    const Part& part = angle.parts[i];
    const bool wrongMark =
        part.mark && part.mark != Mark::Joint && static_cast<std::size_t>(*part.mark) != i;
    const bool last = i + 1 == angle.parts.size();
    if (wrongMark || (part.decimals && !last) || (i > 0 && (part.negative || part.value >= 60.0)))
      return std::nullopt;
    degrees += part.value / std::round(1.0 / unit);
  }
  const bool minus = angle.parts[0].negative;
  if (minus && angle.letter != 0) return std::nullopt;
  return minus || angle.letter == 'S' || angle.letter == 'W' ? -degrees : degrees;
}

bool IsMarked(const Angle& angle) {
  return angle.letter != 0 || std::any_of(angle.parts.begin(), angle.parts.end(),
                                          [](const Part& part) { return part.mark.has_value(); });
}

// Degrees, minutes and seconds without a mark or a letter must be complete, so that four numbers on
// a line are not guessed at; and both angles must be of one form.
bool AreOfOneForm(const Angle& a, const Angle& b) {
  if (a.parts.size() != b.parts.size()) return false;
  return a.parts.size() == 3 || (IsMarked(a) && IsMarked(b));
}

bool IsOfLongitude(char letter) {
  return letter == 'E' || letter == 'W';
}

}  // namespace

OrProblem<AngleEntry> ReadAngleEntry(std::string_view line) {
  EntryReader reader(line);
  if (!reader.ReadAll()) {
    const std::string_view rest = reader.rest();
    return ProblemOf("\"" + std::string(rest.substr(0, rest.find_first_of(" \t,;"))) +
                     "\" is not a number or an angle");
  }
  std::vector<Angle>& angles = reader.angles();
  if (angles.size() == 1) return ProblemOf("a latitude and a longitude are needed");
  const bool height = angles.size() == 3 && angles[2].letter == 0 && angles[2].parts.size() == 1 &&
                      !angles[2].parts[0].mark;
  if ((angles.size() != 2 && !height) || !AreOfOneForm(angles[0], angles[1])) {
    return ProblemOf("more than three numbers, and not two angles in degrees, minutes and seconds");
  }
  const bool letters = angles[0].letter != 0 || angles[1].letter != 0;
  if (letters && (angles[0].letter == 0 || angles[1].letter == 0 ||
                  IsOfLongitude(angles[0].letter) == IsOfLongitude(angles[1].letter))) {
    return ProblemOf("the letters N or S and E or W go with one angle each");
  }
  if (letters && IsOfLongitude(angles[0].letter)) std::swap(angles[0], angles[1]);
  const auto latitude = DegreesOf(angles[0]);
  const auto longitude = DegreesOf(angles[1]);
  if (!latitude || !longitude) {
    return ProblemOf(
        "an angle is degrees, minutes below 60 and seconds below 60, decimals in the last only");
  }
  AngleEntry entry{*latitude, *longitude, std::nullopt};
  if (height) {
    const Part& part = angles[2].parts[0];
    entry.heightM = part.negative ? -part.value : part.value;
  }
  return entry;
}

}  // namespace tarvex
