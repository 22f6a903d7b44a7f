#include "roads/station_equations.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "roads/text_fields.h"

namespace tarvex {
namespace {

constexpr std::size_t kSignificantBytes = 254;
constexpr double kSameStation = 1e-6;

}  // namespace

std::vector<StationEquation> ReadStationEquations(std::string_view centerlineText) {
  std::vector<StationEquation> equations;
  NumberedLines lines(centerlineText, kSignificantBytes);
  std::string_view line;
  while (equations.size() < kMostStationEquations && lines.Next(line)) {
    const CommaFields fields(line);
    if (fields[1] != "EQ") continue;
    const auto back = ParseNumber(fields[2]);
    const auto ahead = ParseNumber(fields[3]);
    if (back && ahead) equations.push_back({*back, *ahead});
  }
  return equations;
}

std::vector<StationEquation> Swapped(std::vector<StationEquation> equations) {
  for (StationEquation& equation : equations) std::swap(equation.back, equation.ahead);
  return equations;
}

std::optional<StationEquations> StationEquations::Make(
    const std::vector<StationEquation>& equations, double start, double end, std::size_t* refused) {
  StationEquations made;
  made.start_ = start;
  made.end_ = end;
  double before = start - kSameStation;
  for (const StationEquation& equation : equations) {
    const double shift = made.shifts_.back();
    const double internal = equation.back - shift;
    if (!(internal > before && internal < end + kSameStation)) {
      if (refused != nullptr) *refused = made.equations_.size();
      return std::nullopt;
    }
    made.equations_.push_back(equation);
    made.internal_.push_back(internal);
    made.shifts_.push_back(shift + (equation.ahead - equation.back));
    before = internal;
  }
  return made;
}

std::size_t StationEquations::RegionIndex(double internal) const {
  const auto above = std::upper_bound(internal_.begin(), internal_.end(), internal);
  return static_cast<std::size_t>(above - internal_.begin());
}

DisplayedStation StationEquations::Displayed(double internal) const {
  const std::size_t index = RegionIndex(internal);
  return {internal + shifts_[index], static_cast<int>(index) + 1};
}

std::vector<InternalStation> StationEquations::Internal(double displayed,
                                                        std::optional<int> region) const {
  if (empty()) {
    return region.value_or(1) == 1 ? std::vector<InternalStation>{{displayed, 1}}
                                   : std::vector<InternalStation>{};
  }
  std::vector<InternalStation> found;
  for (std::size_t i = 0; i < shifts_.size(); ++i) {
    const int number = static_cast<int>(i) + 1;
    if (region && *region != number) continue;
    const double internal = displayed - shifts_[i];
    const double from = i == 0 ? start_ : internal_[i - 1];
    const double to = i < internal_.size() ? internal_[i] : end_;
    if (internal >= from - kSameStation && internal <= to + kSameStation) {
      found.push_back({internal, number});
    }
  }
  return found;
}

std::vector<InternalStation> StationEquations::Beyond(double displayed,
                                                      std::optional<int> region) const {
  std::vector<InternalStation> found;
  if (empty()) return found;
  const int last = static_cast<int>(shifts_.size());
  const double before = displayed - shifts_.front();
  const double behind = displayed - shifts_.back();
  if (region.value_or(1) == 1 && before < start_) found.push_back({before, 1});
  if (region.value_or(last) == last && behind > end_) found.push_back({behind, last});
  return found;
}

std::string StationEquations::Text(double internal, StationMode mode, int decimals) const {
  const DisplayedStation displayed = Displayed(internal);
  std::string text = FormatStation(displayed.station, mode, decimals);
  if (!empty() && Internal(displayed.station).size() > 1) {
    text += " R";
    AppendInteger(text, displayed.region);
  }
  return text;
}

namespace {

// Takes " R2" or "(2)" off the end of an entry; false when it is there but holds no number.
bool TakeRegion(std::string_view& text, std::optional<int>& region) {
  const std::size_t mark = text.find_first_of("Rr(");
  if (mark == std::string_view::npos) return true;
  std::string_view number = text.substr(mark + 1);
  if (text[mark] == '(') {
    if (!number.ends_with(')')) return false;
    number.remove_suffix(1);
  }
  const auto value = ParseInteger(number);
  if (!value || *value < 1 || *value > static_cast<long long>(kMostStationEquations) + 1) {
    return false;
  }
  region = static_cast<int>(*value);
  text = WithoutOuterBlanks(text.substr(0, mark));
  return true;
}

}  // namespace

std::optional<StationEntry> ParseStationEntry(std::string_view text) {
  text = WithoutOuterBlanks(text);
  StationEntry entry;
  if (!TakeRegion(text, entry.region)) return std::nullopt;
  const bool negative = text.starts_with('-');
  const std::size_t plus = text.find('+', 1);
  if (text.empty() || plus == std::string_view::npos) {
    const auto number = ParseNumber(text);
    if (!number) return std::nullopt;
    entry.displayed = *number;
    return entry;
  }
  // The digits before the point tell the style: two for 12+34.50, three for 12+345.678.
  const std::string_view rest = text.substr(plus + 1);
  const std::size_t digits = std::min(rest.find('.'), rest.size());
  const auto number = ParseNumber(text.substr(negative ? 1 : 0, plus - (negative ? 1 : 0)));
  const auto remainder = ParseNumber(rest);
  if (!number || !remainder || !IsDigit(rest.front()) || (digits != 2 && digits != 3)) {
    return std::nullopt;
  }
  const double magnitude = *number * (digits == 2 ? 100.0 : 1000.0) + *remainder;
  entry.displayed = negative ? -magnitude : magnitude;
  return entry;
}

}  // namespace tarvex
