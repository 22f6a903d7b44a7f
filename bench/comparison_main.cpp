// The main program of every benchmark: each job of ours and its peers run interleaved, several
// times, and one line a job gives our median and the ratio to each peer.
//
// Names are "job/who": the job first, then "tarvex" or the peer. Google Benchmark's own options
// hold, and its table of all runs comes with --benchmark_display_aggregates_only=false.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <map>
#include <string>
#include <vector>

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
  return run.GetAdjustedRealTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
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
    std::printf("\n%-34s %9s   %s\n", "", "tarvex", "peers (their time / ours)");
    std::string lineOf;
    for (const auto& [index, median] : medians_) {
      const std::size_t slash = std::min(median.name.rfind('/'), median.name.size());
      const std::string job = median.name.substr(0, slash);
      if (job != lineOf)
        StartLine(job, median.nanoseconds);
      else
        PrintPeer(median.name.substr(slash + 1), median.nanoseconds);
      lineOf = job;
    }
    std::printf("\n");
  }

 private:
  struct Median {
    std::string name;
    double nanoseconds = 0.0;
  };

  void StartLine(const std::string& job, double nanoseconds) {
    ours_ = nanoseconds;
    std::printf("%s%-34s %9s  ", started_ ? "\n" : "", job.c_str(), TimeText(ours_).c_str());
    started_ = true;
  }

  void PrintPeer(const std::string& who, double nanoseconds) const {
    std::printf(" %s %s (%.2f) ", who.c_str(), TimeText(nanoseconds).c_str(), nanoseconds / ours_);
  }

  std::map<std::int64_t, Median> medians_;
  double ours_ = 0.0;
  bool started_ = false;
};

}  // namespace
}  // namespace tarvex

int main(int argc, char** argv) {
  // Ours first, so that what is given on the command line wins.
  std::string interleaved = "--benchmark_enable_random_interleaving=true";
  std::string repeated = "--benchmark_repetitions=3";
  std::vector<char*> arguments{argv[0], interleaved.data(), repeated.data()};
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  tarvex::ComparingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
