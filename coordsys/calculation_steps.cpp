#include "coordsys/calculation_steps.h"

#include <cmath>
#include <limits>

namespace tarvex {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

template <typename Shift>
void OneByOne(const PositionArrays& positions, const Shift& shift) {
  for (std::size_t i = 0; i < positions.latitudeRad.size(); ++i) {
    Geodetic at{positions.latitudeRad[i], positions.longitudeRad[i], positions.heightM[i]};
    if (std::isnan(at.latitudeRad)) continue;
    const StepOutcome outcome = shift(at);
    if (outcome.status != StepStatus::Done) at = {kNaN, kNaN, kNaN};
    positions.latitudeRad[i] = at.latitudeRad;
    positions.longitudeRad[i] = at.longitudeRad;
    positions.heightM[i] = at.heightM;
  }
}

}  // namespace

void DatumShift::AllToSystem(PositionArrays positions) const {
  OneByOne(positions, [this](Geodetic& at) { return ToSystem(at); });
}

void DatumShift::AllToWgs84(PositionArrays positions) const {
  OneByOne(positions, [this](Geodetic& at) { return ToWgs84(at); });
}

void GeoidModel::Undulations(std::span<const double> latitudeRad,
                             std::span<const double> longitudeRad,
                             std::span<double> undulationM) const {
  for (std::size_t i = 0; i < latitudeRad.size(); ++i) {
    double undulation = kNaN;
    if (!std::isnan(latitudeRad[i])) {
      const StepOutcome outcome = Undulation(latitudeRad[i], longitudeRad[i], undulation);
      if (outcome.status != StepStatus::Done) undulation = kNaN;
    }
    undulationM[i] = undulation;
  }
}

}  // namespace tarvex
