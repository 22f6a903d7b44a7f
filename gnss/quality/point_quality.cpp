#include "gnss/quality/point_quality.h"

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr int kRmsDecimals = 3;
constexpr int kDopDecimals = 1;

// One labelled value of a text: what comes before it, the label and its separator, the value.
struct Form {
  std::string_view beforeHorizontal;
  std::string_view beforeVertical;
  std::string_view beforeOther;
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

void AppendQuality(std::string& out, const GnssPositionState& state, bool qualityInsteadOfRms,
                   const Form& form) {
  AppendValue(out, form.beforeHorizontal, qualityInsteadOfRms ? "HQ" : "HRMS",
              FixedNumber(state.hrms, kRmsDecimals), form);
  AppendValue(out, form.beforeVertical, qualityInsteadOfRms ? "VQ" : "VRMS",
              FixedNumber(state.vrms, kRmsDecimals), form);
  AppendValue(out, form.beforeOther, "STATUS", SolutionText(state.solutionType), form);
  if (state.satellites > 0) {
    AppendValue(out, form.beforeOther, "SATS", std::to_string(state.satellites), form);
  }
  if (state.pdop > 0.0) {
    AppendValue(out, form.beforeOther, "PDOP", FixedNumber(state.pdop, kDopDecimals), form);
  }
}

}  // namespace

std::string QualityComment(const GnssPositionState& state, bool qualityInsteadOfRms,
                           const std::optional<QualityStamp>& stamp) {
  std::string text;
  AppendQuality(text, state, qualityInsteadOfRms, kComment);
  if (stamp) text.append("\n--DT").append(stamp->date).append("\n--TM").append(stamp->time);
  return text;
}

std::string QualityBlockLines(const GnssPositionState& state, bool qualityInsteadOfRms,
                              const std::optional<QualityStamp>& stamp) {
  std::string text;
  AppendQuality(text, state, qualityInsteadOfRms, kBlock);
  if (stamp) {
    AppendValue(text, "", "DATE", stamp->date, kBlock);
    AppendValue(text, "", "TIME", stamp->time, kBlock);
  }
  return text;
}

bool TellsNoPrecision(std::string_view blockLines) {
  const std::string none = "," + FixedNumber(0.0, kRmsDecimals);
  const std::string_view horizontal = TakeLine(blockLines).value_or("");
  const std::string_view vertical = TakeLine(blockLines).value_or("");
  return (horizontal == "HRMS" + none && vertical == "VRMS" + none) ||
         (horizontal == "HQ" + none && vertical == "VQ" + none);
}

}  // namespace tarvex
