// Any bytes as a centerline file: they load or are refused, what loaded can be written and loads
// again, and its geometry answers with finite numbers.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "roads/alignment_check.h"
#include "roads/centerline_reader.h"
#include "roads/centerline_writer.h"
#include "roads/stakeout.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

void AskGeometry(const tarvex::RoadGeometry& road) {
  const double start = road.alignment.startStation();
  const double end = road.alignment.endStation();
  for (const double station : {start, 0.5 * (start + end), end, end + 10.0}) {
    const auto point = road.alignment.PointAt(station, 3.0);
    Require(point && std::isfinite(point->at.northing) && std::isfinite(point->at.easting));
    const auto closest = road.alignment.Closest(point->at);
    Require(closest && std::isfinite(closest->station) && std::isfinite(closest->offset));
    (void)road.alignment.Candidates(point->at);
    (void)road.equations.Text(station, tarvex::StationMode::Hundreds, 2);
  }
  (void)tarvex::CheckAlignment(road, {}, {});
  (void)tarvex::StakeStations(road, nullptr, 25.0, start, end);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto chain = tarvex::ReadChain(text, false);
  const auto equations = tarvex::ReadStationEquations(text);
  if (!chain) return 0;
  tarvex::Centerline centerline;
  centerline.elements = chain->elements;
  centerline.startPoint = chain->startPoint;
  if (tarvex::IsWritable(centerline, equations)) {
    Require(bool(tarvex::ReadChain(tarvex::CenterlineText(centerline, equations), false)));
  }
  const auto made = tarvex::MakeRoadGeometry(centerline, equations);
  if (made) AskGeometry(*made);
  return 0;
}
