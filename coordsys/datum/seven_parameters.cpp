#include "coordsys/datum/seven_parameters.h"

#include <cmath>
#include <iterator>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

double ArcsecondsToRadians(double seconds) {
  return seconds * 3.141592653589793 * 1.5432098765432098e-6;
}

// X - r x X
Geocentric MinusCross(const SevenParameterArguments& r, const Geocentric& p) {
  return {p.xM + r.rzRad * p.yM - r.ryRad * p.zM, p.yM + r.rxRad * p.zM - r.rzRad * p.xM,
          p.zM + r.ryRad * p.xM - r.rxRad * p.yM};
}

}  // namespace

SevenParameters SevenParametersOf(const ProjectionRecord& record) {
  return {.dxM = record.shiftDxM,
          .dyM = record.shiftDyM,
          .dzM = record.shiftDzM,
          .rxArcsec = record.shiftRxArcsec,
          .ryArcsec = record.shiftRyArcsec,
          .rzArcsec = record.shiftRzArcsec,
          .scalePpm = record.shiftScalePpm};
}

std::optional<SevenParameters> ParseSevenParameters(std::string_view text) {
  constexpr double kLargest[7] = {1e4, 1e4, 1e4, 600.0, 600.0, 600.0, 1000.0};
  if (!text.starts_with('=')) return std::nullopt;
  double numbers[7] = {};
  std::size_t count = 0;
  for (bool more = true; more; ++count) {
    text.remove_prefix(1);
    const std::size_t comma = text.find(',');
    const auto number = ParseNumber(WithoutOuterBlanks(text.substr(0, comma)));
    if (count == std::size(numbers) || !number || std::fabs(*number) > kLargest[count]) {
      return std::nullopt;
    }
    numbers[count] = *number;
    more = comma != std::string_view::npos;
    if (more) text.remove_prefix(comma);
  }
  if (count != 3 && count != std::size(numbers)) return std::nullopt;
  return SevenParameters{.dxM = numbers[0],
                         .dyM = numbers[1],
                         .dzM = numbers[2],
                         .rxArcsec = 0.0 - numbers[3],
                         .ryArcsec = 0.0 - numbers[4],
                         .rzArcsec = 0.0 - numbers[5],
                         .scalePpm = numbers[6]};
}

SevenParameterArguments ForwardArguments(const SevenParameters& parameters) {
  return {.dxM = parameters.dxM,
          .dyM = parameters.dyM,
          .dzM = parameters.dzM,
          .rxRad = ArcsecondsToRadians(parameters.rxArcsec),
          .ryRad = ArcsecondsToRadians(parameters.ryArcsec),
          .rzRad = ArcsecondsToRadians(parameters.rzArcsec),
          .scale = 1.0 + parameters.scalePpm * 1e-6};
}

SevenParameterArguments InverseArguments(const SevenParameters& parameters) {
  const SevenParameterArguments forward = ForwardArguments(parameters);
  return {.dxM = -forward.dxM,
          .dyM = -forward.dyM,
          .dzM = -forward.dzM,
          .rxRad = -forward.rxRad,
          .ryRad = -forward.ryRad,
          .rzRad = -forward.rzRad,
          .scale = 1.0 / forward.scale};
}

Geocentric RotateScaleTranslate(const SevenParameterArguments& arguments, const Geocentric& point) {
  const Geocentric rotated = MinusCross(arguments, point);
  return {arguments.dxM + arguments.scale * rotated.xM,
          arguments.dyM + arguments.scale * rotated.yM,
          arguments.dzM + arguments.scale * rotated.zM};
}

Geocentric TranslateUnrotateScale(const SevenParameterArguments& arguments,
                                  const Geocentric& point) {
  const SevenParameterArguments& r = arguments;
  const Geocentric w = {point.xM + r.dxM, point.yM + r.dyM, point.zM + r.dzM};
  const Geocentric turned = MinusCross(r, w);
  const double along = r.rxRad * w.xM + r.ryRad * w.yM + r.rzRad * w.zM;
  const double factor = r.scale / (1.0 + r.rxRad * r.rxRad + r.ryRad * r.ryRad + r.rzRad * r.rzRad);
  return {factor * (turned.xM + r.rxRad * along), factor * (turned.yM + r.ryRad * along),
          factor * (turned.zM + r.rzRad * along)};
}

}  // namespace tarvex
