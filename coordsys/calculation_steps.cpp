#include "coordsys/calculation_steps.h"

#include <cmath>
#include <limits>

namespace tarvex {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

template <typename Shift>
void OneByOne(const PositionArrays& positions, const Shift& shift) {
  for (std::size_t i = 0; i < positions.latitude_rad.size(); ++i) {
    Geodetic at{positions.latitude_rad[i], positions.longitude_rad[i], positions.height_m[i]};
    if (std::isnan(at.latitude_rad)) continue;
    const StepOutcome outcome = shift(at);
    if (outcome.status != StepStatus::Done) at = {kNaN, kNaN, kNaN};
    positions.latitude_rad[i] = at.latitude_rad;
    positions.longitude_rad[i] = at.longitude_rad;
    positions.height_m[i] = at.height_m;
  }
}

}  // namespace

void DatumShift::AllToSystem(PositionArrays positions) const {
  OneByOne(positions, [this](Geodetic& at) { return ToSystem(at); });
}

void DatumShift::AllToWgs84(PositionArrays positions) const {
  OneByOne(positions, [this](Geodetic& at) { return ToWgs84(at); });
}

void GeoidModel::Undulations(std::span<const double> latitude_rad,
                             std::span<const double> longitude_rad,
                             std::span<double> undulation_m) const {
  for (std::size_t i = 0; i < latitude_rad.size(); ++i) {
    double undulation = kNaN;
    if (!std::isnan(latitude_rad[i])) {
      const StepOutcome outcome = Undulation(latitude_rad[i], longitude_rad[i], undulation);
      if (outcome.status != StepStatus::Done) undulation = kNaN;
    }
    undulation_m[i] = undulation;
  }
}

}  // namespace tarvex
