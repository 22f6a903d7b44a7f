// WGS84 to a grid and back, by a calculator made from a definition.
#include <cstdio>

#include "tarvex/coordsys/catalogue/utm_zones.h"
#include "tarvex/coordsys/chain/calculator.h"
#include "tarvex/core/units/units.h"

int main() {
  tarvex::CTrgCalculator calculator;
  const tarvex::UtmZone zone{.number = 32, .hemisphere = tarvex::Hemisphere::North};
  calculator.ParseDefinition(tarvex::UtmDefinition(zone), nullptr);
  if (calculator.State() != tarvex::CalculationResult::Done) {
    std::fprintf(stderr, "%s\n", calculator.StateText().c_str());
    return 1;
  }

  const tarvex::Geodetic wgs84{.latitudeRad = 47.28 * tarvex::kRadiansPerDegree,
                               .longitudeRad = 8.56 * tarvex::kRadiansPerDegree,
                               .heightM = 450.0};
  tarvex::GridPoint point;
  tarvex::Geodetic back;
  if (calculator.ToGrid(wgs84, point) != tarvex::CalculationResult::Done ||
      calculator.ToWgs84(point, back) != tarvex::CalculationResult::Done) {
    return 1;
  }
  std::printf("N %.4f E %.4f EL %.4f\n", point.northing, point.easting, point.elevation);
  std::printf("%.9f %.9f\n", back.latitudeRad * tarvex::kDegreesPerRadian,
              back.longitudeRad * tarvex::kDegreesPerRadian);
}
