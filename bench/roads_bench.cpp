// Roads: loading, point at a station, station and offset of a point, beside GEOS on chords.
//
// The road repeats tangent, spiral, arc, spiral, tangent, spiral, arc, spiral; GEOS projects on the
// same road as a line string of chords (0.1 long on the short road, 1 on the long one), which is an
// approximation: 5e-6 to 5e-4 off.
#include <benchmark/benchmark.h>
#include <geos_c.h>

#include <cstdarg>
#include <random>
#include <string>
#include <vector>

#include "core/text/number_text.h"
#include "roads/centerline_reader.h"
#include "roads/centerline_writer.h"
#include "roads/road_geometry.h"

namespace tarvex {
namespace {

constexpr double kRadius = 250.0;
constexpr double kSpiral = 80.0;
constexpr double kArc = 120.0;
constexpr double kTangent = 90.0;

// Walks the elements and notes the key points.
class RoadWalk {
 public:
  Centerline Take() {
    Add(KeyPointKind::Line);
    return std::move(centerline_);
  }

  void Tangent() {
    Add(KeyPointKind::Line);
    Go(0.0, 0.0, kTangent);
  }

  void Bend(double turn) {
    const double k = turn / kRadius;
    const std::size_t first = centerline_.elements.size();
    Add(KeyPointKind::TangentSpiral);
    Go(0.0, k, kSpiral);
    Add(KeyPointKind::SpiralCurve);
    const double across = azimuth_ + turn * 1.5707963267948966;
    for (std::size_t i = first; i < first + 2; ++i) {
      CenterlineElement& e = centerline_.elements[i];
      e.angle = k * kArc;
      e.centerNorthing = at_.northing + kRadius * std::cos(across);
      e.centerEasting = at_.easting + kRadius * std::sin(across);
    }
    Go(k, k, kArc);
    Add(KeyPointKind::CurveSpiral);
    Go(k, 0.0, kSpiral);
    Add(KeyPointKind::SpiralTangent);
  }

 private:
  void Add(KeyPointKind kind) {
    CenterlineElement e;
    e.record = kind;
    e.northing = at_.northing;
    e.easting = at_.easting;
    e.station = station_;
    centerline_.elements.push_back(e);
  }

  void Go(double k0, double k1, double length) {
    std::vector<SpiralPanel> panels;
    const CurvePiece piece = MakeSpiralPiece(at_, azimuth_, k0, k1, length, panels);
    at_ = piece.ToGrid(piece.end.x, piece.end.y);
    azimuth_ += 0.5 * (k0 + k1) * length;
    station_ += length;
  }

  Centerline centerline_;
  PlanPoint at_{4512345.678, 512345.678};
  double azimuth_ = 0.7;
  double station_ = 1000.0;
};

std::string RoadText(std::int64_t elements) {
  RoadWalk walk;
  for (std::int64_t i = 0; i < elements / 8; ++i) {
    walk.Tangent();
    walk.Bend(1.0);
    walk.Tangent();
    walk.Bend(-1.0);
  }
  return CenterlineText(walk.Take(), {});
}

RoadGeometry MakeRoad(std::int64_t elements) {
  Centerline centerline;
  centerline.elements = ReadChain(RoadText(elements), false)->elements;
  return MakeRoadGeometry(centerline, {}).value();
}

// Points within 20 of the road, all along it in random order.
std::vector<PlanPoint> PointsBeside(const Alignment& road) {
  std::mt19937_64 random(5);
  std::uniform_real_distribution<double> part(0.0, 1.0);
  std::vector<PlanPoint> points;
  for (int i = 0; i < 4096; ++i) {
    const double station =
        road.startStation() + part(random) * (road.endStation() - road.startStation());
    points.push_back(road.PointAt(station, 40.0 * (part(random) - 0.5))->at);
  }
  return points;
}

template <std::int64_t kElements>
void LoadRoad(benchmark::State& state) {
  const std::string text = RoadText(kElements);
  for (auto _ : state) {
    Centerline centerline;
    centerline.elements = ReadChain(text, false)->elements;
    benchmark::DoNotOptimize(MakeRoadGeometry(centerline, {}));
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}
BENCHMARK(LoadRoad<8>)->Name("load a road, 8 elements/tarvex")->Unit(benchmark::kMicrosecond);
BENCHMARK(LoadRoad<10000>)
    ->Name("load a road, 10000 elements/tarvex")
    ->Unit(benchmark::kMicrosecond);

template <std::int64_t kElements>
void PointAtStation(benchmark::State& state) {
  const RoadGeometry road = MakeRoad(kElements);
  std::mt19937_64 random(6);
  std::uniform_real_distribution<double> station(road.alignment.startStation(),
                                                 road.alignment.endStation());
  std::vector<double> stations(4096);
  for (double& s : stations) s = station(random);
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(road.alignment.PointAt(stations[i++ & 4095], 3.0));
}
BENCHMARK(PointAtStation<8>)->Name("point at a station, 8 elements/tarvex");
BENCHMARK(PointAtStation<10000>)->Name("point at a station, 10000 elements/tarvex");

template <std::int64_t kElements>
void StationOfPoint(benchmark::State& state) {
  const RoadGeometry road = MakeRoad(kElements);
  const auto points = PointsBeside(road.alignment);
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(road.alignment.Closest(points[i++ & 4095]));
}

template <std::int64_t kElements>
void AllCandidates(benchmark::State& state) {
  const RoadGeometry road = MakeRoad(kElements);
  const auto points = PointsBeside(road.alignment);
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(road.alignment.Candidates(points[i++ & 4095]));
}
BENCHMARK(AllCandidates<8>)
    ->Name("all candidates, 8 elements/tarvex")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(AllCandidates<10000>)
    ->Name("all candidates, 10000 elements/tarvex")
    ->Unit(benchmark::kMicrosecond);

void IgnoreNotice(const char*, ...) {}

template <std::int64_t kElements>
void GeosProjectOnChords(benchmark::State& state) {
  const RoadGeometry road = MakeRoad(kElements);
  const auto points = PointsBeside(road.alignment);
  const double chord = kElements == 8 ? 0.1 : 1.0;
  initGEOS(IgnoreNotice, IgnoreNotice);
  const double length = road.alignment.endStation() - road.alignment.startStation();
  const auto count = static_cast<unsigned>(length / chord) + 1;
  GEOSCoordSequence* sequence = GEOSCoordSeq_create(count, 2);
  for (unsigned k = 0; k < count; ++k) {
    const auto at = road.alignment.PointAt(road.alignment.startStation() + k * chord)->at;
    GEOSCoordSeq_setXY(sequence, k, at.easting, at.northing);
  }
  GEOSGeometry* line = GEOSGeom_createLineString(sequence);
  std::size_t i = 0;
  for (auto _ : state) {
    const PlanPoint& p = points[i++ & 4095];
    GEOSGeometry* point = GEOSGeom_createPointFromXY(p.easting, p.northing);
    benchmark::DoNotOptimize(GEOSProject(line, point));
    GEOSGeom_destroy(point);
  }
  GEOSGeom_destroy(line);
  finishGEOS();
}
// Each peer is registered behind ours.
BENCHMARK(StationOfPoint<8>)->Name("station and offset, 8 elements/tarvex");
BENCHMARK(GeosProjectOnChords<8>)
    ->Name("station and offset, 8 elements/GEOS on chords")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(StationOfPoint<10000>)->Name("station and offset, 10000 elements/tarvex");
BENCHMARK(GeosProjectOnChords<10000>)
    ->Name("station and offset, 10000 elements/GEOS on chords")
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tarvex
