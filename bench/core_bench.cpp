// Formats of the job's files: packed angles both ways, stations.
#include <benchmark/benchmark.h>

#include "core/angle.h"
#include "core/station.h"

namespace tarvex {
namespace {

void PackAngle(benchmark::State& state) {
  double degrees = 12.582416666;
  for (auto _ : state) {
    benchmark::DoNotOptimize(DegreesToPacked(degrees));
    degrees += 0.001;
  }
}
BENCHMARK(PackAngle)->Name("pack an angle/tarvex");

}  // namespace
}  // namespace tarvex
