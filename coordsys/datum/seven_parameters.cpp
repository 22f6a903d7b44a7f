#include "coordsys/datum/seven_parameters.h"

#include <cmath>
#include <iterator>

#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

double ArcsecondsToRadians(double seconds) {
  return seconds * 3.141592653589793 * 1.5432098765432098e-6;
}

// X - r x X
Geocentric MinusCross(const SevenParameterArguments& r, const Geocentric& p) {
  return {p.x_m + r.rz_rad * p.y_m - r.ry_rad * p.z_m, p.y_m + r.rx_rad * p.z_m - r.rz_rad * p.x_m,
          p.z_m + r.ry_rad * p.x_m - r.rx_rad * p.y_m};
}

}  // namespace

SevenParameters SevenParametersOf(const ProjectionRecord& record) {
  return {.dx_m = record.shift_dx,
          .dy_m = record.shift_dy,
          .dz_m = record.shift_dz,
          .rx_arcsec = record.shift_rx,
          .ry_arcsec = record.shift_ry,
          .rz_arcsec = record.shift_rz,
          .scale_ppm = record.shift_scale};
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
  return SevenParameters{.dx_m = numbers[0],
                         .dy_m = numbers[1],
                         .dz_m = numbers[2],
                         .rx_arcsec = 0.0 - numbers[3],
                         .ry_arcsec = 0.0 - numbers[4],
                         .rz_arcsec = 0.0 - numbers[5],
                         .scale_ppm = numbers[6]};
}

SevenParameterArguments ForwardArguments(const SevenParameters& parameters) {
  return {.dx_m = parameters.dx_m,
          .dy_m = parameters.dy_m,
          .dz_m = parameters.dz_m,
          .rx_rad = ArcsecondsToRadians(parameters.rx_arcsec),
          .ry_rad = ArcsecondsToRadians(parameters.ry_arcsec),
          .rz_rad = ArcsecondsToRadians(parameters.rz_arcsec),
          .scale = 1.0 + parameters.scale_ppm * 1e-6};
}

SevenParameterArguments InverseArguments(const SevenParameters& parameters) {
  const SevenParameterArguments forward = ForwardArguments(parameters);
  return {.dx_m = -forward.dx_m,
          .dy_m = -forward.dy_m,
          .dz_m = -forward.dz_m,
          .rx_rad = -forward.rx_rad,
          .ry_rad = -forward.ry_rad,
          .rz_rad = -forward.rz_rad,
          .scale = 1.0 / forward.scale};
}

Geocentric RotateScaleTranslate(const SevenParameterArguments& arguments, const Geocentric& point) {
  const Geocentric rotated = MinusCross(arguments, point);
  return {arguments.dx_m + arguments.scale * rotated.x_m,
          arguments.dy_m + arguments.scale * rotated.y_m,
          arguments.dz_m + arguments.scale * rotated.z_m};
}

Geocentric TranslateUnrotateScale(const SevenParameterArguments& arguments,
                                  const Geocentric& point) {
  const SevenParameterArguments& r = arguments;
  const Geocentric w = {point.x_m + r.dx_m, point.y_m + r.dy_m, point.z_m + r.dz_m};
  const Geocentric turned = MinusCross(r, w);
  const double along = r.rx_rad * w.x_m + r.ry_rad * w.y_m + r.rz_rad * w.z_m;
  const double factor =
      r.scale / (1.0 + r.rx_rad * r.rx_rad + r.ry_rad * r.ry_rad + r.rz_rad * r.rz_rad);
  return {factor * (turned.x_m + r.rx_rad * along), factor * (turned.y_m + r.ry_rad * along),
          factor * (turned.z_m + r.rz_rad * along)};
}

}  // namespace tarvex
