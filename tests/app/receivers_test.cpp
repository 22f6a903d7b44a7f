// The commands around a receiver and its caster: watch, bases, replay, caster, and a session that
// is recorded and replayed.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <thread>
#include <utility>

#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"
#include "tests/support/certificates.h"
#include "tests/support/loopback_listener.h"
#include "tests/support/peer.h"

namespace tarvex {
namespace {

using namespace std::chrono_literals;

const std::string kLogs = std::string(TARVEX_TEST_DATA) + "/";

// An epoch of a receiver; 47.285233 N, 8.265251 E.
std::string Epoch(int second) {
  const std::string clock =
      "1235" + std::string(second < 10 ? "0" : "") + std::to_string(second) + ".00";
  return "$GPGST," + clock + ",,,,,0.03,0.04,0.06\r\n$GPGGA," + clock +
         ",4717.11399,N,00833.91590,E,4,12,0.9,499.6,M,48.0,M,1.0,0001\r\n";
}

std::string Epochs(int count) {
  std::string log;
  for (int second = 0; second < count; ++second) log += Epoch(second);
  return log;
}

// A program that goes on beside the test; ended when the test is over.
class Running {
 public:
  explicit Running(const std::string& line) : process_(folder.Start(line)) {}
  ~Running() {
    if (process_ > 0) (void)End(SIGKILL);
  }

  ProgramResult End(int signal) {
    ::kill(process_, signal);
    return Wait();
  }
  ProgramResult Wait() { return folder.Finish(std::exchange(process_, -1)); }

  /// What the first group of the expression finds in the output, as soon as it is there.
  std::string Said(const std::string& expression) {
    const std::regex wanted(expression);
    for (int i = 0; i < 1500; ++i) {
      const std::string output = folder.Read("OUT");
      std::smatch found;
      if (std::regex_search(output, found, wanted)) return found[1];
      std::this_thread::sleep_for(10ms);
    }
    ADD_FAILURE() << "not said: " << expression << "\n" << folder.Read("ERR");
    return "";
  }

  ProgramFolder folder;

 private:
  pid_t process_;
};

std::string ServeCapture(const std::string& options) {
  return "caster " + kLogs + "ntrip/rtcm3.bndm.log --port 0 " + options;
}

TEST(Watch, PrintsALineForEachPosition) {
  ProgramFolder folder;
  folder.Write("site.log", Epochs(3));
  const ProgramResult watched = folder.Run("watch file:site.log --make nmea");
  EXPECT_EQ(watched.exitCode, 0) << watched.errors;
  EXPECT_EQ(
      watched.output,
      "47.285233167 8.565265000 547.600 FIXED 12 satellites HRMS 0.050 VRMS 0.060 12:35:00\n"
      "47.285233167 8.565265000 547.600 FIXED 12 satellites HRMS 0.050 VRMS 0.060 12:35:01\n"
      "47.285233167 8.565265000 547.600 FIXED 12 satellites HRMS 0.050 VRMS 0.060 12:35:02\n");
  EXPECT_EQ(folder.Run("watch file:site.log --make nmea --count 2 --log-stream kept").exitCode, 0);
  EXPECT_EQ(folder.Read("kept"), Epochs(2)) << "what was read, as it was sent";
}

TEST(Watch, SaysWhatIsWrong) {
  ProgramFolder folder;
  folder.Write("short.log", Epochs(1));
  folder.Write("empty.log", "");
  const struct {
    const char* line;
    int exitCode;
    const char* says;
  } cases[] = {
      {"watch file:short.log --make nmea --count 5", 1, "The receiver's data ended after 1"},
      {"watch file:empty.log", 1, "No position came."},
      {"watch file:none.log", 1, "none.log"},
      {"watch usb:1", 2, "usb:1"},
      {"watch serial:/dev/no-such-port", 1, "No such file or directory"},
      {"watch tcp:no-such-host.invalid:9001", 1, "no-such-host.invalid:9001"},
      {"watch file:short.log --make other", 2, "other"},
      {"watch file:short.log --set nmea_pos=3", 2, "nmea_pos takes 1 GGA, 2 GLL"},
      {"watch file:short.log --set nmea_po=1", 2, "no receiver setting \"nmea_po\""},
      {"watch simulated --make other", 2, "other"},
      {"watch simulated --corrections ntrip://a/b", 2, "takes no corrections"},
      {"watch serial:/dev/x --corrections ntrip://a", 2, "MOUNTPOINT"},
      {"watch serial:/dev/x --corrections ntrip://u:secret@a/b", 2, "--password-file"},
      {"watch serial:/dev/x --corrections \"ntrip://a/M x\"", 2, "no blank"},
      {"watch serial:/dev/x --corrections ntrips://a", 2, "MOUNTPOINT"},
      {"watch serial:/dev/x --corrections ntrip://a/b --ca x", 2, "give ntrips://"}};
  for (const auto& c : cases) {
    const ProgramResult result = folder.Run(c.line);
    EXPECT_EQ(result.exitCode, c.exitCode) << c.line;
    EXPECT_NE(result.errors.find(c.says), std::string::npos) << c.line << "\n" << result.errors;
    EXPECT_EQ(result.errors.find("secret"), std::string::npos) << "no password is repeated";
  }
}

TEST(Watch, ShowsTheWayToAPointOfAJob) {
  ProgramFolder folder;
  folder.Write("site.log", Epochs(3));
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  ASSERT_EQ(folder.Run("collect site.crd --receiver file:site.log --first A").exitCode, 0);
  const auto listed = JsonReading(folder.Run("points site.crd --json").output);
  const double north = listed["points"][0]["northing"].number();
  const double east = listed["points"][0]["easting"].number();
  ASSERT_EQ(folder
                .Run("store site.crd B " + std::to_string(north - 3.0) + " " +
                     std::to_string(east + 4.0) + " 545.6")
                .exitCode,
            0);
  const ProgramResult watched =
      folder.Run("watch file:site.log --count 1 --job site.crd --to b --antenna-height 2");
  EXPECT_EQ(watched.exitCode, 0) << watched.errors;
  EXPECT_NE(watched.output.find("; N " + std::to_string(north).substr(0, 10)), std::string::npos)
      << watched.output;
  EXPECT_NE(watched.output.find("; to B: 5.000 at 126.9 (SE), N -3.000 E +4.000 EL +0.000"),
            std::string::npos)
      << watched.output;
  EXPECT_NE(watched.errors.find("no geoid"), std::string::npos) << watched.errors;
  EXPECT_NE(
      folder.Run("watch file:site.log --job site.crd --to C").errors.find("has no point \"C\""),
      std::string::npos);
  EXPECT_EQ(folder.Run("watch file:site.log --to C").exitCode, 2);
  EXPECT_EQ(folder.Run("watch file:site.log --job none.crd").exitCode, 1);
}

TEST(Watch, EndsAtOnceWhenInterrupted) {
  Running watch("watch simulated");
  (void)watch.Said("(FIXED)");
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(watch.End(SIGINT).exitCode, 0);
  EXPECT_LT(std::chrono::steady_clock::now() - before, 3s);
}

// A receiver on a loopback port, whose link the test makes and breaks.
class LoopbackReceiver {
 public:
  ~LoopbackReceiver() { Break(); }

  std::string Name() const { return "tcp:" + listener_.target(); }
  void Say(const std::string& bytes) {
    if (peer_ < 0) peer_ = listener_.Accept();
    (void)::send(peer_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }
  void Break() {
    if (peer_ >= 0) ::close(std::exchange(peer_, -1));
  }

 private:
  LoopbackListener listener_;
  int peer_ = -1;
};

TEST(Watch, OpensALostLinkAgain) {
  LoopbackReceiver receiver;
  Running watch("watch " + receiver.Name() + " --make nmea --count 3");
  receiver.Say(Epochs(2) + Epoch(2).substr(0, 90));
  (void)watch.Said("(12:35:01)");
  receiver.Break();
  receiver.Say(Epoch(3));
  const ProgramResult watched = watch.Wait();
  EXPECT_EQ(watched.exitCode, 0) << watched.errors;
  EXPECT_NE(watched.output.find("12:35:03"), std::string::npos);
  EXPECT_EQ(watched.output.find("12:35:02"), std::string::npos) << "it was cut off";
  EXPECT_EQ(watched.errors,
            "The link to the receiver is lost; it is opened again as soon as it can be.\n"
            "The receiver is connected again.\n");
}

TEST(Watch, FailsWhenALostLinkStaysLost) {
  auto receiver = std::make_unique<LoopbackReceiver>();
  Running watch("watch " + receiver->Name() + " --make nmea");
  receiver->Say(Epochs(1));
  (void)watch.Said("(12:35:00)");
  receiver.reset();
  std::this_thread::sleep_for(1500ms);
  const auto before = std::chrono::steady_clock::now();
  const ProgramResult ended = watch.End(SIGINT);
  EXPECT_LT(std::chrono::steady_clock::now() - before, 1s);
  EXPECT_EQ(ended.exitCode, 1);
  EXPECT_NE(ended.errors.find("did not come back"), std::string::npos) << ended.errors;
}

// Somebody who takes connections and never says a word.
class SilentCaster {
 public:
  ~SilentCaster() {
    if (asker_ >= 0) ::close(asker_);
  }

  /// Until somebody has connected and asked for something; false when nobody does for 15 s.
  bool WaitForARequest() {
    const timeval patience{.tv_sec = 15, .tv_usec = 0};
    ::setsockopt(listener_.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    asker_ = listener_.Accept();
    ::setsockopt(asker_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    char first = 0;
    return ::recv(asker_, &first, 1, 0) == 1;
  }

  /// Says this to who asked, takes the rest of the request, and closes.
  void Answer(const std::string& text) {
    (void)::send(asker_, text.data(), text.size(), MSG_NOSIGNAL);
    ::shutdown(asker_, SHUT_WR);
    char rest[1024];
    while (::recv(asker_, rest, sizeof rest, 0) > 0) continue;
    ::close(std::exchange(asker_, -1));
  }
  /// Ends the waiting of another thread.
  void Leave() const { listener_.Leave(); }

  std::string name() const { return listener_.target(); }

 private:
  LoopbackListener listener_{8};
  int asker_ = -1;
};

TEST(Watch, DoesNotWaitForASilentCasterWhenInterrupted) {
  const SilentCaster caster;
  SilentCaster tableCaster;
  ProgramFolder site;
  site.Write("rover.log", Epochs(50));
  Running replay("replay " + site.Path("rover.log") + " --speed 5 --to tcp");
  Running watch("watch " + replay.Said("--receiver ([^\n]+)") +
                " --make nmea --send-gga always --corrections ntrip://" + caster.name() + "/SITE");
  (void)watch.Said("(; Connecting to 127.0.0.1)");
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(watch.End(SIGINT).exitCode, 1);  // no corrections came
  EXPECT_LT(std::chrono::steady_clock::now() - before, 2s) << "a first answer may take 4 s";
  Running bases("bases " + tableCaster.name());
  ASSERT_TRUE(tableCaster.WaitForARequest());
  const auto then = std::chrono::steady_clock::now();
  EXPECT_EQ(bases.End(SIGINT).exitCode, 1);
  EXPECT_LT(std::chrono::steady_clock::now() - then, 2s);
}

TEST(Bases, ListsWhatACasterOffers) {
  Running caster(ServeCapture("--mountpoint SITE --wants-gga"));
  const std::string port = caster.Said("127.0.0.1:([0-9]+)/SITE");
  ProgramFolder folder;
  const ProgramResult listed = folder.Run("bases 127.0.0.1:" + port);
  EXPECT_EQ(listed.exitCode, 0) << listed.errors;
  EXPECT_EQ(listed.output,
            "SITE                 RTCM 3.2      0.00N 0.00E Trial, needs your position\n");
  const auto json =
      JsonReading(folder.Run("bases 127.0.0.1:" + port + " --near 0,1 --json").output);
  ASSERT_EQ(json["bases"].size(), 1U);
  EXPECT_EQ(json["bases"][0]["mountpoint"], "SITE");
  EXPECT_EQ(json["bases"][0]["format_code"], 39);
  EXPECT_EQ(json["bases"][0]["needs_gga"], true);
  EXPECT_EQ(json["bases"][0]["generator"], "Tarvex");
  EXPECT_EQ(json["bases"][0]["authentication"], "N");
  EXPECT_EQ(json["bases"][0]["fee"], false);
  EXPECT_EQ(json["complete"], true);
  EXPECT_NEAR(json["bases"][0]["distance_km"].number(), 111.19, 0.01);
  const ProgramResult ended = caster.End(SIGTERM);
  EXPECT_EQ(ended.exitCode, 0);
  EXPECT_NE(ended.output.find("Served 2 requests"), std::string::npos) << ended.output;
  const ProgramResult gone = folder.Run("bases 127.0.0.1:" + port);
  EXPECT_EQ(gone.exitCode, 1);
  EXPECT_EQ(gone.errors, "ERROR: 127.0.0.1:" + port + " cannot be reached: Connection refused.\n");
  EXPECT_EQ(folder.Run("bases /").exitCode, 2);
  EXPECT_EQ(folder.Run("bases h --near 91,0").exitCode, 2);
}

// Somebody who gives each who connects the same answer and closes.
class AnsweringCaster {
 public:
  explicit AnsweringCaster(const std::string& answer)
      : answering_([this, answer](const std::stop_token& stop) {
          while (!stop.stop_requested() && caster_.WaitForARequest()) caster_.Answer(answer);
        }) {}
  ~AnsweringCaster() { caster_.Leave(); }
  std::string name() const { return caster_.name(); }

 private:
  SilentCaster caster_;
  std::jthread answering_;
};

// The caster of our own behind Debian's socat; its certificate is right, and then not trusted.
TEST(Bases, ComeByTls) {
  Certificates certificates;
  if (!Installed("socat") || !Installed("openssl")) GTEST_SKIP() << "socat or openssl is missing";
  ASSERT_TRUE(certificates.MakeSelfSigned("self", "Somebody"));
  Running caster(ServeCapture("--mountpoint TEST"));
  const std::string plain = caster.Said("127.0.0.1:([0-9]+)/TEST");
  int port = 0;
  {
    const LoopbackListener free;
    port = std::stoi(free.target().substr(free.target().find(':') + 1));
  }
  const Peer front({"socat",
                    "OPENSSL-LISTEN:" + std::to_string(port) +
                        ",bind=127.0.0.1,reuseaddr,fork,verify=0,cert=" +
                        certificates.Path("self.pem") + ",key=" + certificates.Path("self.key"),
                    "TCP:127.0.0.1:" + plain});
  const std::string address = "bases ntrips://localhost:" + std::to_string(port);
  ProgramFolder folder;
  ProgramResult listed;
  EXPECT_TRUE(Eventually([&] {
    listed = folder.Run(address + " --ca " + certificates.Path("self.pem"));
    return listed.exitCode == 0;
  })) << listed.errors;
  EXPECT_NE(listed.output.find("TEST"), std::string::npos);
  const ProgramResult refused = folder.Run(address);
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_NE(refused.errors.find("(Somebody) is signed by itself"), std::string::npos)
      << refused.errors;

  // A program without its module says so, and asks nobody in the clear.
  std::filesystem::copy_file(TARVEX_PROGRAM, folder.Path("tarvex"));
  folder.UseProgram(folder.Path("tarvex"));
  EXPECT_NE(folder.Run(address).errors.find("this installation has no TLS"), std::string::npos);
}

TEST(Bases, ShowNothingThatATerminalObeys) {
  const AnsweringCaster caster(
      "SOURCETABLE 200 OK\r\n\r\nSTR;EVIL\x1b[2J\x1b]0;owned\x07;Pl\xC2\x9B"
      "31m;RTCM\x9B;x;2\r\n"
      "ENDSOURCETABLE\r\n");
  ProgramFolder folder;
  for (const std::string json : {"", " --json"}) {
    const ProgramResult listed = folder.Run("bases " + caster.name() + json);
    EXPECT_EQ(listed.exitCode, 0) << listed.errors;
    EXPECT_NE(listed.output.find("EVIL"), std::string::npos);
    for (const char c : listed.output) {
      const auto code = static_cast<unsigned char>(c);
      EXPECT_TRUE(c == '\n' || (code >= 0x20 && code < 0x7F) || code >= 0xA0) << int{code} << json;
    }
  }
}

TEST(Bases, TellAListThatWasCut) {
  const AnsweringCaster caster("SOURCETABLE 200 OK\r\n\r\nSTR;A;x\r\nSTR;B;c;RTCM");
  ProgramFolder folder;
  const ProgramResult listed = folder.Run("bases " + caster.name());
  EXPECT_EQ(listed.exitCode, 1);
  EXPECT_EQ(listed.output.substr(0, 2), "A ");
  EXPECT_EQ(listed.output.find("\nB"), std::string::npos) << "the line that was cut itself";
  EXPECT_NE(listed.errors.find("broke its list off"), std::string::npos);
}

TEST(Bases, AreKeptForWhereThereIsNoNetwork) {
  const AnsweringCaster one("SOURCETABLE 200 OK\r\n\r\nSTR;A;x\r\nSTR;B;y\r\nENDSOURCETABLE\r\n");
  const AnsweringCaster other("SOURCETABLE 200 OK\r\n\r\nSTR;C;z\r\nENDSOURCETABLE\r\n");
  ProgramFolder folder;
  const std::string data = folder.Path("data");
  const char* const before = std::getenv("TARVEX_DATA");
  const std::string kept = before != nullptr ? before : "";
  ::setenv("TARVEX_DATA", data.c_str(), 1);
  EXPECT_EQ(folder.Run("bases --known").exitCode, 1);
  for (int i = 0; i < 2; ++i) {  // a second time in place of the first
    EXPECT_EQ(folder.Run("bases " + one.name() + " --save").exitCode, 0);
  }
  EXPECT_EQ(folder.Run("bases " + other.name() + " --save").exitCode, 0);
  const auto all = JsonReading(folder.Run("bases --known --json").output);
  const ProgramResult single = folder.Run("bases --known " + other.name());
  if (before != nullptr) {
    ::setenv("TARVEX_DATA", kept.c_str(), 1);
  } else {
    ::unsetenv("TARVEX_DATA");
  }
  ASSERT_EQ(all["casters"].size(), 2U);
  EXPECT_EQ(all["casters"][0]["caster"], one.name());
  EXPECT_EQ(all["casters"][0]["bases"].size(), 2U);
  EXPECT_EQ(all["casters"][1]["bases"][0]["mountpoint"], "C");
  EXPECT_EQ(single.output.substr(0, other.name().size() + 3), other.name() + "\nC ");
  const std::string port = one.name().substr(one.name().find(':') + 1);
  const std::string list = folder.Read("data/casters.lst");
  EXPECT_EQ(list.substr(0, list.find('\n')), "CAS;127.0.0.1;" + port + ";;;0;;0.00;0.00;;;;;0\r");
  EXPECT_NE(list.find("STR;A;x;;;0;;;;0.00;0.00;0;0;;;N;0;0;;127.0.0.1;" + port + ";;0\r\n"),
            std::string::npos)
      << list;
}

TEST(Bases, RepeatNoPassword) {
  ProgramFolder folder;
  for (const std::string line :
       {"bases user:S3cretPw@host:2101", "bases user:S3cretPw@/", "bases S3cretPw@host:x"}) {
    const ProgramResult result = folder.Run(line);
    EXPECT_EQ(result.exitCode, 2) << line;
    EXPECT_EQ(result.errors.find("S3cret"), std::string::npos) << result.errors;
  }
  folder.Write("secret", "S3cretPw\n");
  EXPECT_NE(folder.Run("bases u@127.0.0.1:9 --password-file none").errors.find("cannot be read"),
            std::string::npos);
  EXPECT_NE(folder.Run("bases [::1]:1").errors.find("[::1]:1 cannot be reached"),
            std::string::npos);
}

TEST(Bases, LeaveNothingBehind) {
  const AnsweringCaster caster("SOURCETABLE 200 OK\r\n\r\nSTR;A;\r\nENDSOURCETABLE\r\n");
  ProgramFolder folder;
  const std::string passing = folder.Path("passing");
  std::filesystem::create_directory(passing);
  const char* const before = std::getenv("TMPDIR");
  const std::string kept = before != nullptr ? before : "";
  ::setenv("TMPDIR", passing.c_str(), 1);
  const ProgramResult listed = folder.Run("bases " + caster.name());
  if (before != nullptr) {
    ::setenv("TMPDIR", kept.c_str(), 1);
  } else {
    ::unsetenv("TMPDIR");
  }
  EXPECT_EQ(listed.exitCode, 0) << listed.errors;
  EXPECT_TRUE(std::filesystem::is_empty(passing));
}

TEST(Caster, RefusesWhatMakesNoSense) {
  ProgramFolder folder;
  folder.Write("empty", "");
  const std::string file = kLogs + "ntrip/rtcm3.log";
  EXPECT_EQ(folder.Run("caster none").exitCode, 1);
  EXPECT_EQ(folder.Run("caster empty").exitCode, 1);
  EXPECT_EQ(folder.Run("caster " + file + " --mountpoint \"A B\"").exitCode, 2);
  const ProgramResult bare = folder.Run("caster " + file + " --user u");
  EXPECT_EQ(bare.exitCode, 2);
  EXPECT_NE(bare.errors.find("TARVEX_CASTER_PASSWORD"), std::string::npos);
}

TEST(Replay, IsARoversSessionTogetherWithACaster) {
  Running caster(ServeCapture("--mountpoint SITE --rate 20000"));
  const std::string port = caster.Said("127.0.0.1:([0-9]+)/SITE");
  ProgramFolder site;
  for (const std::string to : {"pty", "tcp"}) {
    SCOPED_TRACE(to);
    const std::string log = site.Path("rover.log");
    site.Write("rover.log", Epochs(20));
    Running replay("replay " + log + " --speed 20 --keep-input taken --to " + to);
    const std::string receiver = replay.Said("--receiver ([^\n]+)");
    const ProgramResult watched =
        site.Run("watch " + receiver + " --make nmea --count 20 --send-gga always --log-stream " +
                 to + ".log --corrections ntrip://127.0.0.1:" + port + "/SITE");
    EXPECT_EQ(watched.exitCode, 0) << watched.errors;
    EXPECT_EQ(site.Read(to + ".log"), Epochs(20));
    const ProgramResult sent = replay.Wait();
    EXPECT_EQ(sent.exitCode, 0) << sent.errors;
    const std::string taken = replay.folder.Read("taken");
    EXPECT_GT(taken.size(), 100U);
    std::string served;
    while (served.size() < taken.size()) {
      std::ifstream file(kLogs + "ntrip/rtcm3.bndm.log", std::ios::binary);
      served.append(std::istreambuf_iterator<char>(file), {});
    }
    EXPECT_EQ(taken, served.substr(0, taken.size())) << "every byte of the corrections, in order";
  }
  EXPECT_NE(caster.End(SIGINT).output.find("from a rover: $GPGGA,1235"), std::string::npos);
}

TEST(Replay, SaysWhatIsWrong) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run("replay none").exitCode, 1);
  folder.Write("log", Epochs(1));
  EXPECT_EQ(folder.Run("replay log --to file").exitCode, 2);
  EXPECT_EQ(folder.Run("replay log --speed -1").exitCode, 2);
  Running waiting("replay " + folder.Path("log") + " --to tcp");
  (void)waiting.Said("(tcp:127)");
  EXPECT_EQ(waiting.End(SIGINT).exitCode, 1) << "nothing was sent";
}

const char* const kJobFiles[] = {"site.crd", "site.rw5", "site.not"};

// The same new job in another folder.
void CopyJob(const ProgramFolder& from, const ProgramFolder& to) {
  for (const auto& entry : std::filesystem::directory_iterator(from.Path("."))) {
    const std::string name = entry.path().filename();
    if (name.starts_with("site.")) to.Write(name, from.Read(name));
  }
}

std::string WithoutTimes(const std::string& text) {
  return std::regex_replace(text, std::regex("(--DT|--TM|DATE,|TIME,|,DT|,TM)[0-9:-]+"), "$1");
}

TEST(RecordedSession, ComesToTheSameBytesEveryTime) {
  ProgramFolder field;
  ASSERT_EQ(field.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  ProgramFolder office[2];
  for (const ProgramFolder& folder : office) CopyJob(field, folder);
  field.Write("rover.log", Epochs(30));
  const std::string options = " --make nmea --count 10 --average 3 --antenna-height 1.8";
  Running replay("replay " + field.Path("rover.log") + " --speed 0 --to tcp");
  const std::string receiver = replay.Said("--receiver ([^\n]+)");
  const ProgramResult live =
      field.Run("collect site.crd --log-stream kept --receiver " + receiver + options);
  ASSERT_EQ(live.exitCode, 0) << live.errors;
  ASSERT_EQ(field.Read("kept"), Epochs(30));
  for (ProgramFolder& folder : office) {
    const ProgramResult again =
        folder.Run("collect site.crd --receiver file:" + field.Path("kept") + options +
                   " --recorded-at \"2026-02-28 23:59:50\"");
    ASSERT_EQ(again.exitCode, 0) << again.errors;
    EXPECT_EQ(again.output, live.output);
  }
  for (const char* const name : kJobFiles) {
    EXPECT_GT(office[0].Read(name).size(), 100U) << name;
    EXPECT_EQ(office[0].Read(name), office[1].Read(name)) << name;
    EXPECT_EQ(WithoutTimes(office[0].Read(name)), WithoutTimes(field.Read(name))) << name;
  }
  // The times are those of the recording, over midnight and into the next month.
  const std::string raw = office[0].Read("site.rw5");
  EXPECT_NE(raw.find("--DT02-28-2026\n--TM23:59:52\n"), std::string::npos) << raw;
  EXPECT_NE(raw.find("--DT03-01-2026\n--TM00:00:19\n"), std::string::npos) << raw;
}

TEST(RecordedSession, StepsBackWithItsReceiver) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  folder.Write("log", Epoch(20) + Epoch(19) + Epoch(21));
  ASSERT_EQ(folder
                .Run("collect site.crd --receiver file:log --make nmea --count 3 --recorded-at "
                     "\"2027-01-01 12:00:00\"")
                .exitCode,
            0);
  const std::string notes = folder.Read("site.not");
  EXPECT_NE(notes.find("DATE,01-01-2027\nTIME,11:59:59\n"), std::string::npos) << notes;
  EXPECT_NE(notes.find("DATE,01-01-2027\nTIME,12:00:01\n"), std::string::npos) << notes;
}

TEST(RecordedSession, NeedsADateAndARecording) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  for (const char* const time : {"yesterday", "2026-02-30 10:00:00", "2026-02-28 24:00:00"}) {
    EXPECT_EQ(
        folder
            .Run("collect site.crd --receiver file:log --recorded-at \"" + std::string(time) + "\"")
            .exitCode,
        2)
        << time;
  }
  EXPECT_EQ(
      folder.Run("collect site.crd --receiver simulated --recorded-at \"2026-02-28 10:00:00\"")
          .exitCode,
      2);
}

}  // namespace
}  // namespace tarvex
