// A million lines through `tarvex convert` beside PROJ's cs2cs on the same lines: processor time of
// the whole program, from the file to a file, and its largest memory.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench/scratch_folder.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kLines = 1'000'000;
constexpr const char* kPeer = "/usr/bin/cs2cs";

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// Runs a program from a file to a file; false when it did not end well.
bool RunBetween(const std::vector<std::string>& words, const std::string& input,
                const std::string& output, rusage& used) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const pid_t process = ::fork();
  if (process == 0) {
    ::setenv("TARVEX_DATA", TARVEX_DATA, 1);
    ::dup2(::open(input.c_str(), O_RDONLY), STDIN_FILENO);
    ::dup2(::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
  }
  int status = 0;
  ::wait4(process, &status, 0, &used);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Positions over 6 degrees of longitude, and their grid coordinates.
class Lines {
 public:
  Lines() {
    std::mt19937 random(17);
    std::uniform_real_distribution<double> latitude(46.0, 54.0);
    std::uniform_real_distribution<double> longitude(6.0, 12.0);
    std::uniform_real_distribution<double> height(0.0, 900.0);
    std::string text;
    for (int i = 0; i < kLines; ++i) {
      AppendFixed(text, latitude(random), 9);
      text += ' ';
      AppendFixed(text, longitude(random), 9);
      text += ' ';
      AppendFixed(text, height(random), 3);
      text += '\n';
    }
    std::ofstream(positions()) << text;
    rusage used{};
    (void)RunBetween({TARVEX_PROGRAM, "convert", "--system", "UTM/UTM WGS84 Zone 32"}, positions(),
                     grid(), used);
  }

  std::string positions() const { return folder_.Path("positions.txt"); }
  std::string grid() const { return folder_.Path("grid.txt"); }
  std::string output() const { return folder_.Path("out.txt"); }

 private:
  ScratchFolder folder_;
};

void Run(benchmark::State& state, const std::vector<std::string>& words, bool inverse) {
  static const Lines lines;
  for (auto _ : state) {
    rusage used{};
    if (!RunBetween(words, inverse ? lines.grid() : lines.positions(), lines.output(), used)) {
      return state.SkipWithError("the program failed");
    }
    state.SetIterationTime(Seconds(used.ru_utime) + Seconds(used.ru_stime));
    state.counters["largest_kB"] = static_cast<double>(used.ru_maxrss);
  }
}

const bool kRegistered = [] {
  const auto add = [](const std::string& name, std::vector<std::string> words, bool inverse) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [words = std::move(words), inverse](benchmark::State& state) {
                                   Run(state, words, inverse);
                                 })
        ->UseManualTime()
        ->Iterations(1);
  };
  struct Job {
    std::string name;
    std::string system;  // to both; -s and -r give northing and easting in our order
    bool swapped;
  };
  const Job jobs[] = {{"a million lines, UTM", "EPSG:32632", true},
                      {"a million lines, seven parameters", "EPSG:31467", false}};
  const std::string earth = "EPSG:4326";
  const bool peer = ::access(kPeer, X_OK) == 0;
  for (const Job& job : jobs) {
    add(job.name + "/tarvex", {TARVEX_PROGRAM, "convert", "--system", job.system}, false);
    if (peer) {
      add(job.name + "/cs2cs", {kPeer, "-f", "%.4f", job.swapped ? "-s" : "-w3", earth, job.system},
          false);
    }
    add(job.name + ", back/tarvex",
        {TARVEX_PROGRAM, "convert", "--inverse", "--system", job.system}, true);
    if (peer) {
      add(job.name + ", back/cs2cs",
          {kPeer, "-f", "%.10f", job.swapped ? "-r" : "-w3", job.system, earth}, true);
    }
  }
  return true;
}();

}  // namespace
}  // namespace tarvex
