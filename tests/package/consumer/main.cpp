// Converts on the projections that a closed library computes, which is found where it was
// installed:
//   consumer FOLDER    of the installed catalogue, with its separator
#include <cmath>
#include <cstdio>

#include "core/units.h"  // its own
#include "tarvex/coordsys/catalogue/system_catalogue.h"
#include "tarvex/coordsys/chain/calculator.h"
#include "tarvex/coordsys/chain/step_preparation.h"
#include "tarvex/core/units/units.h"

namespace {

struct Site {
  const char* system;
  double latitude;
  double longitude;
  // By PROJ 9.1.1 with the same parameters; 0 where it has no such system.
  double northing;
  double easting;
};

constexpr Site kSites[] = {
    {"DENMARK/ED50/System34 Jutland", 56.2, 9.5, 0.0, 0.0},
    {"GERMANY/DHDN/Soldner Berlin", 52.52, 13.4, 21457.5653, 24698.7406},
    {"EUROPE/CH1903+/LV95", 47.0, 7.5, 1205439.9555, 2604667.4741},
    {"HUNGARY/HD72/EOV", 47.5, 19.04, 239562.8270, 649439.0140},
};

bool Converts(const tarvex::SystemCatalogue& catalogue, const Site& site) {
  const auto system = catalogue.Find(site.system);
  if (!system) return false;
  tarvex::CTrgCalculator calculator;
  calculator.ParseDefinition(system->definition, nullptr);
  calculator.SetSteps(
      tarvex::PrepareSteps(
          calculator.record(), {.definitionGivesShift = calculator.definitionGivesShift()},
          {.files = tarvex::SystemFiles(), .coordSys = tarvex::SystemCoordSysLibrary()})
          .steps);
  const tarvex::Geodetic place{.latitudeRad = site.latitude * tarvex::kRadiansPerDegree,
                               .longitudeRad = site.longitude * tarvex::kRadiansPerDegree,
                               .heightM = 200.0};
  tarvex::GridPoint point;
  tarvex::Geodetic back;
  const tarvex::CalculationResult forward = calculator.ToGrid(place, point);
  const tarvex::CalculationResult inverse = calculator.ToWgs84(point, back);
  for (const tarvex::CalculationResult result : {forward, inverse}) {
    if (result == tarvex::CalculationResult::Done) continue;
    std::fprintf(stderr, "%s: %s\n", site.system, tarvex::CalculationText(result).c_str());
    return false;
  }
  std::printf("%-32s N %.4f E %.4f\n", site.system, point.northing, point.easting);
  const double away = std::hypot(point.northing - site.northing, point.easting - site.easting);
  const double returned =
      std::hypot(back.latitudeRad - place.latitudeRad, back.longitudeRad - place.longitudeRad);
  return (site.northing == 0.0 || away < 0.001) && returned * 6.4e6 < 0.01;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 || kOwnUnits != 3) return 1;
  const tarvex::SystemCatalogue catalogue(tarvex::SystemFiles(), argv[1]);
  for (const Site& site : kSites) {
    if (!Converts(catalogue, site)) return 1;
  }
}
