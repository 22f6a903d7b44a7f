#include "gnss/point_quality.h"

#include "core/number_text.h"

namespace tarvex {
namespace {

constexpr int kRmsDecimals = 3;
constexpr int kDopDecimals = 1;

// One labelled value of a text: what stands before it, the label and its separator, the value.
struct Form {
  std::string_view before_horizontal;
  std::string_view before_vertical;
  std::string_view before_other;
  char separator;
  std::string_view after;
};

constexpr Form kComment = {"\n--", ", ", ", ", ':', ""};
constexpr Form kBlock = {"", "", "", ',', "\n"};

void AppendValue(std::string& out, std::string_view before, std::string_view label,
                 std::string_view value, const Form& form) {
  out += before;
  out += label;
  out += form.separator;
  out += value;
  out += form.after;
}

void AppendQuality(std::string& out, const GnssPositionState& state, bool quality_instead_of_rms,
                   const Form& form) {
  AppendValue(out, form.before_horizontal, quality_instead_of_rms ? "HQ" : "HRMS",
              FixedNumber(state.hrms, kRmsDecimals), form);
  AppendValue(out, form.before_vertical, quality_instead_of_rms ? "VQ" : "VRMS",
              FixedNumber(state.vrms, kRmsDecimals), form);
  AppendValue(out, form.before_other, "STATUS", SolutionText(state.solutionType), form);
  if (state.satellites > 0) {
    AppendValue(out, form.before_other, "SATS", std::to_string(state.satellites), form);
  }
  if (state.pdop > 0.0) {
    AppendValue(out, form.before_other, "PDOP", FixedNumber(state.pdop, kDopDecimals), form);
  }
}

}  // namespace

std::string QualityComment(const GnssPositionState& state, bool quality_instead_of_rms,
                           const std::optional<QualityStamp>& stamp) {
  std::string text;
  AppendQuality(text, state, quality_instead_of_rms, kComment);
  if (stamp) text.append("\n--DT").append(stamp->date).append("\n--TM").append(stamp->time);
  return text;
}

std::string QualityBlockLines(const GnssPositionState& state, bool quality_instead_of_rms,
                              const std::optional<QualityStamp>& stamp) {
  std::string text;
  AppendQuality(text, state, quality_instead_of_rms, kBlock);
  if (stamp) {
    AppendValue(text, "", "DATE", stamp->date, kBlock);
    AppendValue(text, "", "TIME", stamp->time, kBlock);
  }
  if (!state.precision_known) AppendValue(text, "", "PRECISION", "UNKNOWN", kBlock);
  return text;
}

}  // namespace tarvex
