// The main program of every benchmark: each job of ours and its peers run interleaved, several
// times, and one row of a table a job and peer tells the medians of both, ours over theirs, and
// what it is held to (bench/bounds.h).
//
// Names are "job/who": the job first, then "tarvex" or the peer. Times are of the processor, so
// that a busy machine is told little, but for the jobs that ask for the clock on the wall because
// they wait for a disk or a network. Google Benchmark's own options hold.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "bench/bounds.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

using Run = benchmark::BenchmarkReporter::Run;

// "1.23 ms", always three digits and more.
std::string TimeText(double nanoseconds) {
  constexpr std::array kUnits{"ns", "us", "ms", "s"};
  std::size_t unit = 0;
  while (nanoseconds >= 1000.0 && unit + 1 < kUnits.size()) {
    nanoseconds /= 1000.0;
    ++unit;
  }
  char text[32];
  const int decimals = nanoseconds < 10.0 ? 2 : nanoseconds < 100.0 ? 1 : 0;
  std::snprintf(text, sizeof text, "%.*f %s", decimals, nanoseconds, kUnits[unit]);
  return text;
}

double Nanoseconds(const Run& run) {
  const bool onTheWall = !run.run_name.time_type.empty();
  const double time = onTheWall ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
  return time * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
}

// What ours over theirs says of the bound.
std::string_view Verdict(double ratio, const Bound& bound) {
  if (ratio > bound.atMost) return "OVER";
  if (bound.aim == bound.atMost) return "kept";
  return ratio <= bound.aim ? "aim" : "kept";
}

// Collects the medians, in the order in which the benchmarks were registered, and prints them at
// the end: interleaved runs finish in any order.
class ComparingReporter final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override {
    PrintBasicContext(&std::cerr, context);
    return true;
  }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) {
        std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
      } else if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median") {
        medians_[run.family_index] = {run.run_name.function_name, Nanoseconds(run)};
      }
    }
    if (::isatty(STDERR_FILENO) != 0) std::fprintf(stderr, "\r%zu measured ", medians_.size());
  }

  void Finalize() override {
    PrintCells("job", "tarvex", "peer", "its time", "ours / its", "at most", "aim", "");
    PrintCells(":-", "-:", ":-", "-:", "-:", "-:", "-:", ":-");
    for (auto at = medians_.begin(); at != medians_.end();) {
      const Median& ours = at->second;
      const std::string job = JobOf(ours);
      bool alone = true;
      for (++at; at != medians_.end() && JobOf(at->second) == job; ++at, alone = false) {
        PrintRow(job, ours, at->second);
      }
      if (alone) PrintCells(job, TimeText(ours.nanoseconds), "", "", "", "", "", "");
    }
  }

 private:
  struct Median {
    std::string name;
    double nanoseconds = 0.0;
  };

  static std::string JobOf(const Median& median) {
    return median.name.substr(0, median.name.rfind('/'));
  }

  static void PrintRow(const std::string& job, const Median& ours, const Median& theirs) {
    const std::string peer = theirs.name.substr(job.size() + 1);
    const double ratio = ours.nanoseconds / theirs.nanoseconds;
    const auto bound = BoundOf(job, peer);
    PrintCells(job, TimeText(ours.nanoseconds), peer, TimeText(theirs.nanoseconds),
               FixedNumber(ratio, ratio < 0.01  ? 4
                                  : ratio < 0.1 ? 3
                                                : 2),
               bound ? ShortestNumber(bound->atMost) : "", bound ? ShortestNumber(bound->aim) : "",
               bound ? Verdict(ratio, *bound) : "");
  }

  // A row of a table in Markdown whose columns are in line.
  static void PrintCells(std::string_view job, std::string_view ours, std::string_view peer,
                         std::string_view theirs, std::string_view ratio, std::string_view atMost,
                         std::string_view aim, std::string_view verdict) {
    const auto cell = [](std::string_view text, int width) {
      std::printf("| %*.*s ", width, static_cast<int>(text.size()), text.data());
    };
    cell(job, -46);
    cell(ours, 7);
    cell(peer, -15);
    cell(theirs, 8);
    cell(ratio, 10);
    cell(atMost, 7);
    cell(aim, 5);
    cell(verdict, -4);
    std::printf("|\n");
  }

  std::map<std::int64_t, Median> medians_;
};

}  // namespace
}  // namespace tarvex

int main(int argc, char** argv) {
  // Ours first, so that what is given on the command line wins.
  std::string interleaved = "--benchmark_enable_random_interleaving=true";
  std::string repeated = "--benchmark_repetitions=5";
  std::string atLeast = "--benchmark_min_time=0.1";
  std::vector<char*> arguments{argv[0], interleaved.data(), repeated.data(), atLeast.data()};
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  tarvex::ComparingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
