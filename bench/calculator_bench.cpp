// The job's calculator beside PROJ's pipeline of the same steps: what a collected or a staked point
// costs, one position a call, and whole arrays. Times are of 1024 positions.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "coordsys/chain/calculator.h"
#include "coordsys/closed/closed_library.h"
#include "coordsys/datum/grid_shifts.h"
#include "coordsys/datum/seven_parameter_shift.h"
#include "core/units/units.h"
#include "platform/run_time_library.h"

namespace tarvex {
namespace {

constexpr std::size_t kPoints = 1024;
constexpr Ellipsoid kBessel = {6377397.155, 0.00334277318217};
constexpr SevenParameters kGerman = {598.1, 73.7, 418.2, -0.202, -0.045, 2.455, 6.7};

struct Route {
  const char* name;
  std::string pipeline;  // of PROJ, from degrees of longitude, latitude and height
  double south, north, west, east;
  std::function<void(CTrgCalculator&)> prepare;
};

ProjectionRecord TransverseMercatorOn(const Ellipsoid& ellipsoid) {
  ProjectionRecord record;
  record.projectionType = static_cast<int>(ProjectionType::TransverseMercator);
  record.semiMajorM = ellipsoid.semiMajorM;
  record.flattening = ellipsoid.flattening;
  record.centralMeridianDeg = 9.0;
  record.scaleFactor = 1.0;
  record.falseEastingM = 500'000.0;
  return record;
}

ProjectionRecord LambertOn(const Ellipsoid& ellipsoid) {
  ProjectionRecord record;
  record.projectionType = static_cast<int>(ProjectionType::LambertConformalConic2SP);
  record.semiMajorM = ellipsoid.semiMajorM;
  record.flattening = ellipsoid.flattening;
  record.centralMeridianDeg = 3.0;
  record.latitudeOfOriginDeg = 46.5;
  record.standardParallel1Deg = 49.0;
  record.standardParallel2OrAzimuthDeg = 44.0;
  record.falseEastingM = 700'000.0;
  record.falseNorthingM = 6'600'000.0;
  return record;
}

void PrepareSevenParameters(CTrgCalculator& calculator) {
  AddRunTimeLibraryFolder(TARVEX_MODULE_FOLDER);
  calculator.SetRecord(TransverseMercatorOn(kBessel));
  calculator.SetSteps({.datumShift = std::make_shared<SevenParameterShift>(
                           kGerman, kBessel, SystemCoordSysLibrary())});
}

std::string ParisPath() {
  return std::string(TARVEX_TEST_DATA) + "/datum/paris.gsb";
}

void PrepareShiftGrid(CTrgCalculator& calculator) {
  Ntv2Grid grid;
  if (!Ntv2Grid::Load(SystemFiles(), ParisPath(), grid).ok()) std::abort();
  calculator.SetRecord(LambertOn(kBessel));
  calculator.SetSteps({.datumShift = std::make_shared<Ntv2Shift>(std::move(grid), "paris.gsb")});
}

std::vector<Route> Routes() {
  const std::string mercator = "+proj=tmerc +lat_0=0 +lon_0=9 +k=1 +x_0=500000";
  return {{.name = "to a grid",
           .pipeline = mercator + " +ellps=WGS84",
           .south = 45,
           .north = 55,
           .west = 6,
           .east = 12,
           .prepare = [](CTrgCalculator& c) { c.SetRecord(TransverseMercatorOn(kWgs84)); }},
          {.name = "seven parameters",
           .pipeline = "+proj=pipeline +step +proj=cart +ellps=WGS84 +step +inv +proj=helmert "
                       "+x=598.1 +y=73.7 +z=418.2 +rx=0.202 +ry=0.045 +rz=-2.455 +s=6.7 "
                       "+convention=position_vector +step +inv +proj=cart +ellps=bessel +step " +
                       mercator + " +ellps=bessel",
           .south = 47.5,
           .north = 54.5,
           .west = 7,
           .east = 11,
           .prepare = PrepareSevenParameters},
          {.name = "shift grid",
           .pipeline = "+proj=pipeline +step +inv +proj=hgridshift +grids=" + ParisPath() +
                       " +step +proj=lcc +lat_0=46.5 +lon_0=3 +lat_1=49 +lat_2=44 +x_0=700000 "
                       "+y_0=6600000 +ellps=bessel",
           .south = 48.05,
           .north = 49.45,
           .west = 2.05,
           .east = 2.95,
           .prepare = PrepareShiftGrid}};
}

struct DestroyPj {
  void operator()(PJ* pj) const { proj_destroy(pj); }
};

// One route with its positions and their grid coordinates, ours and PROJ's.
struct Job {
  CTrgCalculator calculator;
  std::unique_ptr<PJ, DestroyPj> peer;
  std::vector<Geodetic> wgs84;
  std::vector<GridPoint> grid;
  std::vector<CalculationResult> results;

  explicit Job(const Route& route)
      : peer(proj_create(nullptr, route.pipeline.c_str())), grid(kPoints), results(kPoints) {
    route.prepare(calculator);
    std::mt19937 random(17);
    std::uniform_real_distribution<double> latitude(route.south, route.north);
    std::uniform_real_distribution<double> longitude(route.west, route.east);
    std::uniform_real_distribution<double> height(0.0, 900.0);
    for (std::size_t i = 0; i < kPoints; ++i) {
      wgs84.push_back({latitude(random) * kRadiansPerDegree, longitude(random) * kRadiansPerDegree,
                       height(random)});
    }
    calculator.ToGrid(wgs84, grid, results);
    for (std::size_t i = 0; i < kPoints; ++i) {
      const PJ_COORD theirs = Forward(i);
      const bool same = std::abs(theirs.enu.n - grid[i].northing) < 1e-3 &&
                        std::abs(theirs.enu.e - grid[i].easting) < 1e-3;
      if (!same || results[i] != CalculationResult::Done) std::abort();
    }
  }

  PJ_COORD Forward(std::size_t i) const {
    return proj_trans(
        peer.get(), PJ_FWD,
        proj_coord(wgs84[i].longitudeRad, wgs84[i].latitudeRad, wgs84[i].heightM, 0.0));
  }
  PJ_COORD Inverse(std::size_t i) const {
    return proj_trans(peer.get(), PJ_INV,
                      proj_coord(grid[i].easting, grid[i].northing, grid[i].elevation, 0.0));
  }
};

template <typename Run>
void Add(const std::string& name, const std::shared_ptr<Job>& job, const Run& run) {
  benchmark::RegisterBenchmark(name.c_str(), [job, run](benchmark::State& state) {
    for (auto _ : state) run(*job);
  });
}

template <typename One>
auto OneByOne(const One& one) {
  return [one](Job& job) {
    for (std::size_t i = 0; i < kPoints; ++i) one(job, i);
  };
}

void AddRoute(const Route& route) {
  const auto job = std::make_shared<Job>(route);
  const std::string name = std::string("calculator, ") + route.name;
  const auto ours = OneByOne([](Job& j, std::size_t i) {
    GridPoint point;
    benchmark::DoNotOptimize(j.calculator.ToGrid(j.wgs84[i], point));
    benchmark::DoNotOptimize(point);
  });
  const auto oursBack = OneByOne([](Job& j, std::size_t i) {
    Geodetic position;
    benchmark::DoNotOptimize(j.calculator.ToWgs84(j.grid[i], position));
    benchmark::DoNotOptimize(position);
  });
  const auto theirs =
      OneByOne([](Job& j, std::size_t i) { benchmark::DoNotOptimize(j.Forward(i)); });
  const auto theirsBack =
      OneByOne([](Job& j, std::size_t i) { benchmark::DoNotOptimize(j.Inverse(i)); });
  Add(name + ", single/tarvex", job, ours);
  Add(name + ", single/PROJ", job, theirs);
  Add(name + ", single, back/tarvex", job, oursBack);
  Add(name + ", single, back/PROJ", job, theirsBack);
  Add(name + "/tarvex", job, [](Job& j) { j.calculator.ToGrid(j.wgs84, j.grid, j.results); });
  Add(name + "/PROJ", job, theirs);
  Add(name + ", back/tarvex", job, [](Job& j) {
    static std::vector<Geodetic> positions(kPoints);
    j.calculator.ToWgs84(j.grid, positions, j.results);
  });
  Add(name + ", back/PROJ", job, theirsBack);
}

const bool kAdded = [] {
  for (const Route& route : Routes()) AddRoute(route);
  return true;
}();

}  // namespace
}  // namespace tarvex
