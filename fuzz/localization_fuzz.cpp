// Any bytes as a localization file: refused with a line, or read; what was read is written as a
// document that gives the same points.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "coordsys/localization/localization_file.h"

namespace tarvex {
namespace {

bool Near(double a, double b) {
  return std::fabs(a - b) <= 1e-12 * (1.0 + std::fabs(a));
}

bool Same(const LocalizationPoint& a, const LocalizationPoint& b) {
  return Near(a.gnss.latitudeRad, b.gnss.latitudeRad) &&
         Near(a.gnss.longitudeRad, b.gnss.longitudeRad) && Near(a.localX, b.localX) &&
         Near(a.localY, b.localY) && Near(a.localZ, b.localZ) && a.hrms == b.hrms &&
         a.vrms == b.vrms && a.useHorizontal == b.useHorizontal && a.useVertical == b.useVertical &&
         a.description.empty() == b.description.empty();
}

void Run(std::string_view document) {
  LocalizationFault fault;
  const auto read = ParseLocalization(document, DistanceUnit::Metres, fault);
  if (!read) {
    if (fault.line < 1 || fault.text.empty()) std::abort();
    return;
  }
  const std::string text = LocalizationText(read->points, DistanceUnit::Metres);
  const auto again = ParseLocalization(text, DistanceUnit::Metres, fault);
  if (!again || again->points.size() != read->points.size()) std::abort();
  for (std::size_t i = 0; i < read->points.size(); ++i) {
    if (!Same(*read->points[i], *again->points[i])) std::abort();
  }
  // Written again nothing changes in the texts any more.
  const auto third = ParseLocalization(LocalizationText(again->points, DistanceUnit::Metres),
                                       DistanceUnit::Metres, fault);
  if (!third) std::abort();
  for (std::size_t i = 0; i < again->points.size(); ++i) {
    if (again->points[i]->description != third->points[i]->description) std::abort();
  }
}

}  // namespace
}  // namespace tarvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvex::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
