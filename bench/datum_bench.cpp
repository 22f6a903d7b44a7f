// Datum shifts beside PROJ: WGS84 to a grid with seven parameters, and an NTv2 grid both ways, on
// the same points in the same run; and the price of a lookup in the other grids.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

#include "coordsys/datum/geocentric_map.h"
#include "coordsys/datum/seven_parameters.h"
#include "coordsys/geoid/geoid_grid.h"
#include "coordsys/grids/ntv2_grid.h"
#include "coordsys/projections/projection.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr std::size_t kPoints = 4096;
constexpr Ellipsoid kBessel = {6377397.155, 0.00334277318217};
constexpr SevenParameters kGerman = {598.1, 73.7, 418.2, -0.202, -0.045, 2.455, 6.7};

struct Points {
  std::vector<double> latitudeRad;
  std::vector<double> longitudeRad;
  std::vector<double> heightM;
};

Points RandomPoints(double south, double north, double west, double east) {
  std::mt19937_64 random(17);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  Points points;
  for (std::size_t i = 0; i < kPoints; ++i) {
    points.latitudeRad.push_back((south + (north - south) * unit(random)) * kRadiansPerDegree);
    points.longitudeRad.push_back((west + (east - west) * unit(random)) * kRadiansPerDegree);
    points.heightM.push_back(1000.0 * unit(random));
  }
  return points;
}

std::vector<PJ_COORD> InProj(const Points& points) {
  std::vector<PJ_COORD> list;
  for (std::size_t i = 0; i < kPoints; ++i) {
    list.push_back(
        proj_coord(points.longitudeRad[i], points.latitudeRad[i], points.heightM[i], 0.0));
  }
  return list;
}

using Operation = std::unique_ptr<PJ, decltype(&proj_destroy)>;

Operation MakeOperation(const std::string& definition) {
  Operation made(proj_create(PJ_DEFAULT_CTX, definition.c_str()), &proj_destroy);
  if (!made) std::abort();
  return made;
}

void TimeProj(benchmark::State& state, const std::string& definition, PJ_DIRECTION direction,
              const Points& points) {
  const Operation operation = MakeOperation(definition);
  const std::vector<PJ_COORD> start = InProj(points);
  std::vector<PJ_COORD> list;
  for (auto _ : state) {
    list = start;
    proj_trans_array(operation.get(), direction, list.size(), list.data());
    benchmark::DoNotOptimize(list.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kPoints));
}

const Points& GermanPoints() {
  static const Points points = RandomPoints(47.5, 54.5, 7.0, 11.0);
  return points;
}

const char* const kToLocal =
    "+proj=pipeline +step +proj=cart +ellps=WGS84 +step +inv +proj=helmert +x=598.1 +y=73.7 "
    "+z=418.2 +rx=0.202 +ry=0.045 +rz=-2.455 +s=6.7 +convention=position_vector +step +inv "
    "+proj=cart +ellps=bessel";

GeodeticMap LocalMap() {
  const auto map = TakeGeocentricMap([](Geocentric& p) {
    p = TranslateUnrotateScale(InverseArguments(kGerman), p);
    return true;
  });
  return GeodeticMap(kWgs84, kBessel, *map);
}

std::unique_ptr<const Projection> GermanGrid() {
  ProjectionRecord record;
  record.projectionType = static_cast<int>(ProjectionType::TransverseMercator);
  record.semiMajorM = kBessel.semiMajorM;
  record.flattening = kBessel.flattening;
  record.centralMeridianDeg = 9.0;
  record.scaleFactor = 1.0;
  record.falseEastingM = 3'500'000.0;
  return MakeProjection(record).value();
}

void SevenParametersOurs(benchmark::State& state) {
  const GeodeticMap map = LocalMap();
  Points points = GermanPoints();
  for (auto _ : state) {
    points = GermanPoints();
    map.Apply(points.latitudeRad, points.longitudeRad, points.heightM);
    benchmark::DoNotOptimize(points.heightM.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kPoints));
}

void SevenParametersProj(benchmark::State& state) {
  TimeProj(state, kToLocal, PJ_FWD, GermanPoints());
}

void ToGridOurs(benchmark::State& state) {
  const GeodeticMap map = LocalMap();
  const auto grid = GermanGrid();
  Points points = GermanPoints();
  std::vector<double> northing(kPoints);
  std::vector<double> easting(kPoints);
  for (auto _ : state) {
    points = GermanPoints();
    map.Apply(points.latitudeRad, points.longitudeRad, points.heightM);
    benchmark::DoNotOptimize(
        grid->Forward(points.latitudeRad, points.longitudeRad, northing, easting));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kPoints));
}

void ToGridProj(benchmark::State& state) {
  TimeProj(state,
           std::string(kToLocal) +
               " +step +proj=tmerc +lat_0=0 +lon_0=9 +k=1 +x_0=3500000 +ellps=bessel",
           PJ_FWD, GermanPoints());
}

const Points& ParisPoints() {
  static const Points points = RandomPoints(48.05, 49.45, 2.05, 2.95);
  return points;
}

std::string ParisPath() {
  return std::string(TARVEX_TEST_DATA) + "/datum/paris.gsb";
}

using Ntv2Arrays = std::size_t (Ntv2Grid::*)(std::span<double>, std::span<double>) const noexcept;
using Ntv2Single = GridShiftResult (Ntv2Grid::*)(Geodetic&) const noexcept;

Ntv2Grid ParisGrid() {
  Ntv2Grid grid;
  if (!Ntv2Grid::Load(SystemFiles(), ParisPath(), grid).ok()) std::abort();
  return grid;
}

void TimeNtv2(benchmark::State& state, Ntv2Arrays shift) {
  const Ntv2Grid grid = ParisGrid();
  Points points;
  for (auto _ : state) {
    points = ParisPoints();
    benchmark::DoNotOptimize((grid.*shift)(points.latitudeRad, points.longitudeRad));
    benchmark::DoNotOptimize(points.heightM.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kPoints));
}

void TimeSingleNtv2(benchmark::State& state, Ntv2Single shift) {
  const Ntv2Grid grid = ParisGrid();
  const Points& points = ParisPoints();
  std::vector<Geodetic> start;
  for (std::size_t i = 0; i < kPoints; ++i) {
    start.push_back({points.latitudeRad[i], points.longitudeRad[i], points.heightM[i]});
  }
  std::vector<Geodetic> list;
  for (auto _ : state) {
    list = start;
    for (Geodetic& position : list) benchmark::DoNotOptimize((grid.*shift)(position));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kPoints));
}

void Ntv2ForwardOurs(benchmark::State& state) {
  TimeNtv2(state, &Ntv2Grid::Forward);
}
void Ntv2InverseOurs(benchmark::State& state) {
  TimeNtv2(state, &Ntv2Grid::Inverse);
}
void Ntv2ForwardSingle(benchmark::State& state) {
  TimeSingleNtv2(state, &Ntv2Grid::Forward);
}
void Ntv2InverseSingle(benchmark::State& state) {
  TimeSingleNtv2(state, &Ntv2Grid::Inverse);
}
void Ntv2ForwardProj(benchmark::State& state) {
  TimeProj(state, "+proj=hgridshift +grids=" + ParisPath(), PJ_FWD, ParisPoints());
}
void Ntv2InverseProj(benchmark::State& state) {
  TimeProj(state, "+proj=hgridshift +grids=" + ParisPath(), PJ_INV, ParisPoints());
}

const Points& BavarianPoints() {
  static const Points points = RandomPoints(46.6, 50.6, 9.6, 13.4);
  return points;
}

std::string BavariaPath() {
  return std::string(TARVEX_TEST_DATA) + "/datum/bavaria.gtx";
}

void GeoidOurs(benchmark::State& state) {
  GeoidGrid grid;
  if (!GeoidGrid::Load(SystemFiles(), BavariaPath(), grid).ok()) std::abort();
  const Points& points = BavarianPoints();
  for (auto _ : state) {
    for (std::size_t i = 0; i < kPoints; ++i) {
      benchmark::DoNotOptimize(grid.Undulation(points.latitudeRad[i], points.longitudeRad[i]));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kPoints));
}
void GeoidProj(benchmark::State& state) {
  TimeProj(state, "+proj=vgridshift +grids=" + BavariaPath(), PJ_FWD, BavarianPoints());
}

BENCHMARK(SevenParametersOurs)->Name("seven parameters/tarvex");
BENCHMARK(SevenParametersProj)->Name("seven parameters/PROJ");
BENCHMARK(ToGridOurs)->Name("WGS84 to grid, seven parameters/tarvex");
BENCHMARK(ToGridProj)->Name("WGS84 to grid, seven parameters/PROJ");
BENCHMARK(Ntv2ForwardOurs)->Name("shift grid/tarvex");
BENCHMARK(Ntv2ForwardProj)->Name("shift grid/PROJ");
BENCHMARK(Ntv2InverseOurs)->Name("shift grid, back/tarvex");
BENCHMARK(Ntv2InverseProj)->Name("shift grid, back/PROJ");
BENCHMARK(Ntv2ForwardSingle)->Name("shift grid, single/tarvex");
BENCHMARK(Ntv2ForwardProj)->Name("shift grid, single/PROJ");
BENCHMARK(Ntv2InverseSingle)->Name("shift grid, single, back/tarvex");
BENCHMARK(Ntv2InverseProj)->Name("shift grid, single, back/PROJ");
BENCHMARK(GeoidOurs)->Name("geoid, single/tarvex");
BENCHMARK(GeoidProj)->Name("geoid, single/PROJ");

}  // namespace
}  // namespace tarvex
