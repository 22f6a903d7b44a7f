// Whole arrays through the calculator, a block at a time and step by step. Points that every step
// takes come through here; any other is handed to the single point, which says what became of it.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "coordsys/chain/calculator.h"
#include "coordsys/chain/calculator_run.h"

namespace tarvex {
namespace {

constexpr std::size_t kBlock = 256;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Values = std::array<double, kBlock>;

}  // namespace

// A block of points on its way: positions, or north, east and elevation, in arrays. What is
// not-a-number has to be asked for alone.
struct CTrgCalculator::Block {
  Values first;
  Values second;
  Values third;
  std::array<Run, kBlock> runs;  // what each point has come through so far
  std::size_t size = 0;

  std::span<double> First() { return std::span(first).first(size); }
  std::span<double> Second() { return std::span(second).first(size); }
  std::span<double> Third() { return std::span(third).first(size); }
  PositionArrays Positions() { return {First(), Second(), Third()}; }

  void Set(std::size_t i, double a, double b, double c) {
    first[i] = a;
    second[i] = b;
    third[i] = c;
  }
  bool Came(std::size_t i) const { return !std::isnan(first[i]) && !std::isnan(third[i]); }
};

void CTrgCalculator::ToGrid(std::span<const Geodetic> wgs84, std::span<GridPoint> points,
                            std::span<CalculationResult> results) const {
  const CalculationResult state = State();
  std::fill(results.begin(), results.end(), state);
  if (state != CalculationResult::Done) return;
  Block block;
  for (std::size_t begin = 0; begin < wgs84.size(); begin += kBlock) {
    block.size = std::min(kBlock, wgs84.size() - begin);
    const auto positions = wgs84.subspan(begin, block.size);
    BlockOnDatum(positions, block);
    (void)projection_->Forward(block.First(), block.Second(), block.First(), block.Second());
    for (std::size_t i = 0; i < block.size; ++i) {
      Run run;
      const GridMetres plane{block.first[i], block.second[i], block.third[i]};
      results[begin + i] = block.Came(i) ? FromPlane(plane, points[begin + i], run)
                                         : ToGrid(positions[i], points[begin + i]);
    }
  }
}

// WGS84 positions on the system's datum, and their elevations.
void CTrgCalculator::BlockOnDatum(std::span<const Geodetic> wgs84, Block& block) const {
  Values latitude;
  Values longitude;
  for (std::size_t i = 0; i < block.size; ++i) {
    const Geodetic& at = wgs84[i];
    const bool number = IsNumber(at.latitudeRad, at.longitudeRad, at.heightM);
    latitude[i] = number ? at.latitudeRad : kNaN;
    longitude[i] = number ? at.longitudeRad : kNaN;
    block.Set(i, latitude[i], number ? WithinHalfTurns(longitude[i]) : kNaN, at.heightM);
  }
  if (ShiftsDatum()) steps_.datumShift->AllToSystem(block.Positions());
  if (!steps_.geoid) return;
  Values undulationM;
  const std::size_t size = block.size;
  steps_.geoid->Undulations(std::span(latitude).first(size), std::span(longitude).first(size),
                            std::span(undulationM).first(size));
  for (std::size_t i = 0; i < size; ++i) block.third[i] = wgs84[i].heightM - undulationM[i];
}

void CTrgCalculator::ToWgs84(std::span<const GridPoint> points, std::span<Geodetic> wgs84,
                             std::span<CalculationResult> results) const {
  const CalculationResult state = State();
  std::fill(results.begin(), results.end(), state);
  if (state != CalculationResult::Done) return;
  Block block;
  for (std::size_t begin = 0; begin < points.size(); begin += kBlock) {
    block.size = std::min(kBlock, points.size() - begin);
    for (std::size_t i = 0; i < block.size; ++i) {
      GridMetres plane;
      block.runs[i] = {};
      const auto result = ToPlane(points[begin + i], plane, block.runs[i]);
      const bool done = result == CalculationResult::Done;
      block.Set(i, done ? plane.northingM : kNaN, plane.eastingM, plane.elevationM);
    }
    (void)projection_->Inverse(block.First(), block.Second(), block.First(), block.Second());
    BlockFromDatum(block);
    for (std::size_t i = 0; i < block.size; ++i) {
      if (block.Came(i)) {
        wgs84[begin + i] = {block.first[i], block.second[i], block.third[i]};
        results[begin + i] = block.runs[i].End();
      } else {
        results[begin + i] = ToWgs84(points[begin + i], wgs84[begin + i]);
      }
    }
  }
}

// Positions on the system's datum, the heights still elevations, to WGS84.
void CTrgCalculator::BlockFromDatum(Block& block) const {
  if (steps_.geoid) return SettleHeights(block);
  if (ShiftsDatum()) steps_.datumShift->AllToWgs84(block.Positions());
}

// As SettleHeight does for a single point: a point that has settled stays, the others go on.
void CTrgCalculator::SettleHeights(Block& block) const {
  const Values latitude = block.first;
  const Values longitude = block.second;
  const Values elevationM = block.third;
  Values heightM = elevationM;
  Values undulationM;
  std::array<bool, kBlock> settled = {};
  Block passing;
  passing.size = block.size;
  block.first.fill(kNaN);
  bool all = false;
  for (int pass = 0; pass < kHeightPasses && !all; ++pass) {
    passing.first = latitude;
    passing.second = longitude;
    passing.third = heightM;
    if (ShiftsDatum()) steps_.datumShift->AllToWgs84(passing.Positions());
    steps_.geoid->Undulations(passing.First(), passing.Second(),
                              std::span(undulationM).first(block.size));
    all = true;
    for (std::size_t i = 0; i < block.size; ++i) {
      if (settled[i]) continue;
      const double changeM = elevationM[i] + undulationM[i] - passing.third[i];
      const bool moves = std::fabs(changeM) >= kHeightSettledM;
      settled[i] = !moves;  // what is not-a-number goes nowhere either
      if (!std::isnan(changeM) && !moves) {
        block.Set(i, passing.first[i], passing.second[i], passing.third[i]);
      }
      if (moves) heightM[i] += changeM;
      all = all && !moves;
    }
  }
}

}  // namespace tarvex
