// The main program of every benchmark: Google Benchmark's own table, and below it one line a job
// that tells how our time stands beside the peers'.
//
// Names are "job/who": the job first, then "tarvex" or the peer. Runs of the same job are compared
// by their real time.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace tarvex {
namespace {

constexpr const char* kOurs = "tarvex";

struct Timing {
  std::string who;
  double nanoseconds = 0.0;
};

std::string TimeText(double nanoseconds) {
  char text[32];
  const char* unit = "ns";
  double shown = nanoseconds;
  for (const char* larger : {"us", "ms", "s"}) {
    if (shown < 1000.0) break;
    shown /= 1000.0;
    unit = larger;
  }
  std::snprintf(text, sizeof text, "%.3g %s", shown, unit);
  return text;
}

class ComparingReporter final : public benchmark::ConsoleReporter {
 public:
  ComparingReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      const bool counts = run.run_type == Run::RT_Iteration || run.aggregate_name == "median";
      if (counts && !run.error_occurred) Remember(run);
    }
  }

  void Finalize() override {
    std::printf("\n%-34s %12s   %s\n", "job", "ours", "peers: their time, and how many times ours");
    for (const std::string& job : order_) {
      const std::vector<Timing>& timings = jobs_[job];
      if (timings.size() < 2) continue;
      for (const Timing& ours : timings) {
        if (ours.who == kOurs) PrintJob(job, ours, timings);
      }
    }
  }

 private:
  // With repetitions the median, which comes after the single runs, replaces them.
  void Remember(const Run& run) {
    const std::string& name = run.run_name.function_name;
    const std::size_t slash = name.rfind('/');
    if (slash == std::string::npos) return;
    const std::string arguments = run.run_name.args.empty() ? "" : " " + run.run_name.args;
    const std::string job = name.substr(0, slash) + arguments;
    const std::string who = name.substr(slash + 1);
    if (!jobs_.contains(job)) order_.push_back(job);
    const double nanoseconds =
        run.GetAdjustedRealTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
    for (Timing& timing : jobs_[job]) {
      if (timing.who == who) {
        timing.nanoseconds = nanoseconds;
        return;
      }
    }
    jobs_[job].push_back({who, nanoseconds});
  }

  static void PrintJob(const std::string& job, const Timing& ours,
                       const std::vector<Timing>& timings) {
    std::printf("%-34s %12s  ", job.c_str(), TimeText(ours.nanoseconds).c_str());
    for (const Timing& peer : timings) {
      if (peer.who == kOurs) continue;
      std::printf(" %s %s (%.2f)", peer.who.c_str(), TimeText(peer.nanoseconds).c_str(),
                  peer.nanoseconds / ours.nanoseconds);
    }
    std::printf("\n");
  }

  std::vector<std::string> order_;
  std::map<std::string, std::vector<Timing>> jobs_;
};

}  // namespace
}  // namespace tarvex

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  tarvex::ComparingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
