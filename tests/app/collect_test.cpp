// Collecting from every kind of receiver: simulated, TCP, a serial line and recorded logs.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"
#include "tests/support/loopback_listener.h"

namespace tarvex {
namespace {

using namespace std::chrono_literals;

// An epoch of a receiver: precision first, then the position. 47.285233 N, 8.265251 E.
std::string Epoch(int second, const std::string& quality = "4") {
  const std::string clock =
      "1235" + std::string(second < 10 ? "0" : "") + std::to_string(second) + ".00";
  return "$GPGST," + clock + ",,,,,0.03,0.04,0.06\r\n$GPGGA," + clock +
         ",4717.11399,N,00833.91590,E," + quality + ",12,0.9,499.6,M,48.0,M,1.0,0001\r\n";
}

// The makes' settings verify checksums; these sentences have none.
constexpr const char* kPlain = " --make nmea";

void MakeSite(ProgramFolder& folder) {
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
}

std::vector<std::string> Ids(ProgramFolder& folder) {
  std::vector<std::string> ids;
  const auto listed = JsonReading(folder.Run("points site.crd --json").output);
  for (const auto& point : listed["points"].values()) ids.push_back(point["id"].text());
  return ids;
}

// A loopback server that gives every connection the same bytes and then stays silent.
class LoopbackReceiver {
 public:
  explicit LoopbackReceiver(std::string bytes, bool closes = false)
      : bytes_(std::move(bytes)), closes_(closes) {
    server_ = std::thread([this] { Serve(); });
  }
  ~LoopbackReceiver() {
    listener_.Leave();
    server_.join();
    if (connection_ >= 0) ::close(connection_);
  }
  std::string address() const { return "tcp:" + listener_.target(); }

 private:
  void Serve() {
    connection_ = listener_.Accept();
    if (connection_ < 0) return;
    (void)::send(connection_, bytes_.data(), bytes_.size(), MSG_NOSIGNAL);
    if (closes_) ::shutdown(connection_, SHUT_RDWR);
  }

  std::string bytes_;
  bool closes_;
  LoopbackListener listener_;
  int connection_ = -1;
  std::thread server_;
};

TEST(Collect, StoresAndJournalsEachPoint) {
  ProgramFolder folder;
  MakeSite(folder);
  folder.Write("site.log", "# noise\n" + Epoch(1) + Epoch(2, "5"));
  const ProgramResult result =
      folder.Run(std::string("collect site.crd --receiver file:site.log --count 2 --first 7 "
                             "--description \"edge\" --antenna-height 2") +
                 kPlain);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(Ids(folder), (std::vector<std::string>{"7", "8"}));
  const std::string raw = folder.Read("site.rw5");
  // 47 17 06.8394, 8 33 54.954; height as received, elevation less the antenna.
  const std::string gps =
      "\nLS,HR2.0000\nGPS,PN7,LA47.170683940000,LN8.335495400000,EL547.600000,--edge\n--GS,PN7,N ";
  EXPECT_NE(raw.find(gps), std::string::npos) << raw;
  EXPECT_NE(raw.find(",EL545.6000,--edge\n--HRMS:0.050, VRMS:0.060, STATUS:FIXED, SATS:12\n--DT"),
            std::string::npos)
      << raw;
  EXPECT_NE(raw.find("STATUS:FLOAT"), std::string::npos);
  const std::string note = folder.Run("note site.crd 7").output;
  EXPECT_EQ(note.substr(0, note.find("DATE")),
            "PT_ID:7\nHRMS,0.050\nVRMS,0.060\nSTATUS,FIXED\nSATS,12\n");
}

TEST(Collect, GoesOnUnderTheNextId) {
  ProgramFolder folder;
  MakeSite(folder);
  EXPECT_EQ(folder.Run("collect site.crd --receiver simulated --count 2").exitCode, 0);
  EXPECT_EQ(folder.Run("collect site.crd --receiver simulated --first A9 --count 2").exitCode, 0);
  EXPECT_EQ(folder.Run("collect site.crd --receiver simulated --first 1 --existing next").exitCode,
            0);
  EXPECT_EQ(Ids(folder), (std::vector<std::string>{"1", "2", "3", "A9", "A10"}));
  const ProgramResult refused = folder.Run("collect site.crd --receiver simulated --first 1");
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_NE(refused.errors.find("Point 1 exists"), std::string::npos);
}

TEST(Collect, NeverStoresARepeatedEpoch) {
  ProgramFolder folder;
  MakeSite(folder);
  folder.Write("site.log", Epoch(1) + Epoch(1) + Epoch(1) + Epoch(2));
  const ProgramResult result =
      folder.Run(std::string("collect site.crd --receiver file:site.log --count 3") + kPlain);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.errors.find("The receiver repeats its last position"), std::string::npos);
  EXPECT_NE(result.errors.find("The log ended before the points asked for were stored"),
            std::string::npos);
  EXPECT_EQ(Ids(folder).size(), 2U);
}

TEST(Collect, SaysWhyNothingComes) {
  ProgramFolder folder;
  MakeSite(folder);
  const struct {
    std::string log;
    const char* says;
  } cases[] = {
      {Epoch(1, "0"), "No fix"},
      {std::string(40 * 20, '\n') + "$GPVTG,,T\n", "no position sentence"},
      {"$GPGGA,123501,9100.0,N,00833.9,E,1,08,0.9,1,M,1,M,,\n", "valid"},
  };
  for (const auto& c : cases) {
    folder.Write("site.log", c.log);
    const ProgramResult result =
        folder.Run(std::string("collect site.crd --receiver file:site.log") + kPlain);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.errors.find(c.says), std::string::npos) << result.errors;
  }
  const ProgramResult missing = folder.Run("collect site.crd --receiver serial:/dev/no-such-port");
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_NE(missing.errors.find("/dev/no-such-port"), std::string::npos);
  EXPECT_NE(missing.errors.find("No such file or directory"), std::string::npos);
  const ProgramResult refused = folder.Run("collect site.crd --receiver tcp:127.0.0.1:1");
  EXPECT_NE(refused.errors.find("Connection refused"), std::string::npos) << refused.errors;
}

TEST(Collect, ReadsOverTcp) {
  ProgramFolder folder;
  MakeSite(folder);
  LoopbackReceiver receiver(Epoch(1) + Epoch(2));
  EXPECT_EQ(
      folder.Run("collect site.crd --count 2 --receiver " + receiver.address() + kPlain).exitCode,
      0);
  EXPECT_EQ(Ids(folder).size(), 2U);
  LoopbackReceiver closing(Epoch(3), true);
  const ProgramResult cut = folder.Run("collect site.crd --count 2 --patience 2 --receiver " +
                                       closing.address() + kPlain);
  EXPECT_EQ(cut.exitCode, 1);
  EXPECT_EQ(Ids(folder).size(), 3U);
  LoopbackReceiver silent("");
  const ProgramResult quiet =
      folder.Run("collect site.crd --patience 1 --receiver " + silent.address() + kPlain);
  EXPECT_EQ(quiet.exitCode, 1);
  EXPECT_NE(quiet.errors.find("No new position came within 1 s"), std::string::npos)
      << quiet.errors;
}

TEST(Collect, ReadsASerialLine) {
  ProgramFolder folder;
  MakeSite(folder);
  const int far = ::posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(far, 0);
  ASSERT_EQ(::grantpt(far) | ::unlockpt(far), 0);
  const std::string device = ::ptsname(far);
  std::atomic<bool> done = false;
  std::thread talker([&] {
    for (int second = 0; !done && second < 55; ++second) {
      const std::string epoch = Epoch(second);
      (void)!::write(far, epoch.data(), epoch.size());
      std::this_thread::sleep_for(50ms);
    }
  });
  const ProgramResult result =
      folder.Run("collect site.crd --count 3 --receiver serial:" + device + "@115200" + kPlain);
  done = true;
  talker.join();
  ::close(far);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(Ids(folder).size(), 3U);
}

// Until the program has reported as many points, however slow the machine is.
void WaitForPoints(const ProgramFolder& folder, int points) {
  for (int i = 0; i < 3000; ++i) {
    const std::string shown = folder.Read("OUT");
    if (std::count(shown.begin(), shown.end(), '\n') >= points) return;
    std::this_thread::sleep_for(10ms);
  }
}

// By Ctrl-C, by another program, and when the terminal is closed.
class CollectInterrupted : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Signals, CollectInterrupted, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_P(CollectInterrupted, LeavesAWholeJob) {
  ProgramFolder folder;
  MakeSite(folder);
  LoopbackReceiver receiver(Epoch(1) + Epoch(2));
  const pid_t process =
      folder.Start("collect site.crd --count 50 --receiver " + receiver.address() + kPlain);
  WaitForPoints(folder, 2);
  ::kill(process, GetParam());
  const auto before = std::chrono::steady_clock::now();
  const ProgramResult result = folder.Finish(process);
  EXPECT_LT(std::chrono::steady_clock::now() - before, 3s);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.errors.find("Stopped; the job is whole."), std::string::npos);
  EXPECT_NE(result.output.find("Stored 2 points in site.crd."), std::string::npos);
  EXPECT_EQ(Ids(folder).size(), 2U);
}

// Killed without warning, again and again: what was reported is there.
TEST(Collect, KeepsWhatItReportedWhenKilled) {
  ProgramFolder folder;
  MakeSite(folder);
  for (int round = 1; round <= 8; ++round) {
    const std::size_t before = Ids(folder).size();
    const pid_t process = folder.Start("collect site.crd --count 100000 --receiver simulated");
    WaitForPoints(folder, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(3 * round));
    ::kill(process, SIGKILL);
    const ProgramResult killed = folder.Finish(process);
    EXPECT_EQ(killed.exitCode, 128 + SIGKILL);
    const auto reported = std::count(killed.output.begin(), killed.output.end(), '\n');
    EXPECT_GE(reported, 1);
    EXPECT_GE(Ids(folder).size(), before + static_cast<std::size_t>(reported));
  }
}

}  // namespace
}  // namespace tarvex
