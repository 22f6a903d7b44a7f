// The formats of the job's files: packed angles both ways, stations.
#include <benchmark/benchmark.h>

#include <array>

#include "core/units/angle.h"
#include "core/units/station.h"

namespace tarvex {
namespace {

constexpr std::size_t kValues = 1024;

// Values from `low` on that do not repeat, so that no digit can be foreseen.
std::array<double, kValues> Values(double low, double step) {
  std::array<double, kValues> values{};
  for (std::size_t i = 0; i < kValues; ++i) values[i] = low + step * static_cast<double>(i);
  return values;
}

template <class Format>
void RunOver(benchmark::State& state, const std::array<double, kValues>& values, Format format) {
  std::size_t at = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(format(values[at]));
    at = (at + 1) % kValues;
  }
}

void DegreesToPackedAngle(benchmark::State& state) {
  RunOver(state, Values(0.0, 0.3486279), [](double value) { return DegreesToPacked(value); });
}
BENCHMARK(DegreesToPackedAngle)->Name("degrees to packed angle/tarvex");

void DegreesToRecordField(benchmark::State& state) {
  RunOver(state, Values(0.0, 0.3486279), [](double value) { return PackedField(value, 4); });
}
BENCHMARK(DegreesToRecordField)->Name("degrees to packed field/tarvex");

void PackedAngleToDegrees(benchmark::State& state) {
  std::array<double, kValues> packed = Values(0.0, 0.3486279);
  for (double& value : packed) value = DegreesToPacked(value);
  RunOver(state, packed, [](double value) { return PackedToDegrees(value); });
}
BENCHMARK(PackedAngleToDegrees)->Name("packed angle to degrees/tarvex");

void Station(benchmark::State& state) {
  RunOver(state, Values(-100.0, 13.7),
          [](double value) { return FormatStation(value, StationMode::Hundreds, 2); });
}
BENCHMARK(Station)->Name("station to text/tarvex");

}  // namespace
}  // namespace tarvex
