// The NTRIP client: requests, replies in every way that casters send them, records both ways.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <charconv>

#include "gnss/ntrip/base64.h"
#include "gnss/ntrip/client.h"
#include "tests/gnss/ntrip/scripted_caster.h"
#include "tests/support/memory_files.h"

namespace tarvex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(Base64, MatchesItsPublishedVectors) {  // RFC 4648, section 10
  const std::pair<const char*, const char*> cases[] = {{"", ""},
                                                       {"f", "Zg=="},
                                                       {"fo", "Zm8="},
                                                       {"foo", "Zm9v"},
                                                       {"foob", "Zm9vYg=="},
                                                       {"fooba", "Zm9vYmE="},
                                                       {"foobar", "Zm9vYmFy"}};
  for (const auto& [plain, coded] : cases) EXPECT_EQ(Base64Of(plain), coded);
}

TEST(NtripRequest, IsOneTextWithItsLogin) {
  EXPECT_EQ(NtripRequest("MNT", "user", "pass"),
            "GET /MNT HTTP/1.0\r\nUser-Agent: NTRIP Morwend\r\n"
            "Authorization: Basic dXNlcjpwYXNz\r\nAccept: */*\r\nConnection: close\r\n\r\n");
  EXPECT_EQ(NtripRequest("", "", "secret"),
            "GET / HTTP/1.0\r\nUser-Agent: NTRIP Morwend\r\nAccept: */*\r\n"
            "Connection: close\r\n\r\n")
      << "no user, no login";
  EXPECT_THAT(NtripRequest("A\r\nEvil: 1", "", ""), HasSubstr("GET /AEvil:1 HTTP"));
  EXPECT_EQ(NtripRequest2("caster.example:443", "MNT", "user", "pass"),
            "GET /MNT HTTP/1.1\r\nHost: caster.example:443\r\nNtrip-Version: Ntrip/2.0\r\n"
            "User-Agent: NTRIP Morwend\r\nAuthorization: Basic dXNlcjpwYXNz\r\nAccept: */*\r\n"
            "Connection: close\r\n\r\n");
}

class CountingProgress final : public NtripProgress {
 public:
  int Progress(int value, int /*minimum*/, int /*elapsedS*/) override {
    values.push_back(value);
    return static_cast<int>(values.size()) > cancelAfter ? 1 : 0;
  }
  void Status(std::string_view text) override { statuses.emplace_back(text); }

  int cancelAfter = 1'000'000;
  std::vector<int> values;
  std::vector<std::string> statuses;
};

class Client : public testing::Test {
 protected:
  std::string Table(const std::string& name = "table.txt") {
    std::string bytes;
    EXPECT_TRUE(ReadWholeFile(files, name, 1 << 20, bytes).ok());
    return bytes;
  }
  std::string NextBytes() {
    char bytes[64];
    std::size_t count = 0;
    return client.Receive(bytes, count, 100) == PortError::None ? std::string(bytes, count)
                                                                : "failed";
  }

  ManualClock clock;
  MemoryFiles files;
  LastErrorRecord errors;
  CountingProgress progress;
  ScriptedCaster caster{clock};
  NtripClient client{&caster, "test", {.clock = clock, .files = files, .errors = errors}};
};

TEST_F(Client, KeepsTheBytesBehindTheAnswer) {
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"ICY 200 OK\r\n\xD3"}, "\xD3"},
      {{"ICY 200 OK\r\n\r\n\xD3"}, "\xD3"},
      {{"ICY 200 OK\r\n", "\r\n\xD3"}, "\xD3"},
      {{"ICY 200 OK\r\nServer: x\r\nDate: y\r\n\r\n\xD3"}, "\xD3"},
      {{"ICY 200 OK\r\nSer", "ver: x\r\n\r", "\n\xD3"}, "\xD3"},
      {{"ICY 20", "0 OK\r", "\n\xD3"}, "\xD3"},
      {{"ICY 200 OK\r\nYf{text of RTCM 2\x01"}, "Yf{text of RTCM 2\x01"},
      {{"ICY 200 OK\r\n$GPGGA,1\r\n"}, "$GPGGA,1\r\n"},
      {{"ICY 200 OK\r\n\x02\r\n"}, "\x02\r\n"},
  };
  for (const auto& [pieces, expected] : cases) {
    for (const std::string& piece : pieces) caster.steps.emplace_back(piece);
    ASSERT_EQ(client.OpenStream("MNT", "u", "p", progress), PortError::None) << pieces[0];
    std::string got;
    for (int i = 0; i < 4 && got.size() < expected.size(); ++i) {
      const std::string bytes = NextBytes();
      if (bytes != "failed") got += bytes;
    }
    EXPECT_EQ(got, expected) << pieces[0];
    caster.steps.clear();
  }
}

TEST_F(Client, AsksTwiceTheTimeForTheFirstAnswer) {
  caster.steps = {PortError::FewerBytesRead};
  EXPECT_EQ(client.OpenStream("MNT", "", "", progress), PortError::FirstReceiveFailed);
  EXPECT_THAT(caster.receiveTimeouts, ElementsAre(4000));
  EXPECT_EQ(errors.Get().code, 40);
}

TEST_F(Client, NamesEveryRefusal) {
  const std::pair<const char*, PortError> cases[] = {
      {"HTTP/1.0 401 Unauthorized\r\n", PortError::NotAuthorized},
      {"WWW-Authenticate: Basic realm=x", PortError::NotAuthorized},
      {"SOURCETABLE 200 OK\r\nHTTP/1.0 401 Unauthorized", PortError::NotAuthorized},
      {"SOURCETABLE 200 OK\r\nServer", PortError::MountpointUnknown},
      {"DISCONNECT", PortError::Disconnected},
      {"ERROR - Bad Password\r\n", PortError::NotAuthorized},
      {"ERROR - Bad Mountpoint\r\n", PortError::MountpointUnknown},
      {"HTTP/1.1 403 Forbidden\r\n\r\n", PortError::NotAuthorized},
      {"HTTP/1.1 404 Not Found\r\n\r\n", PortError::MountpointUnknown},
      {"HTTP/1.1 500 oh", PortError::CasterRefused},
      {"ERROR - Mount Point Taken\r\n", PortError::CasterRefused},
      {"HTTP/1.1 200 OK\r\nContent-Type: gnss/sourcetable\r\n\r\nSTR",
       PortError::MountpointUnknown},
      {"HTTP/1.1 200 OK\r\nContent-type: text/HTML\r\n\r\n<html>", PortError::NotCorrections},
      {"\x15\x03\x03 alert", PortError::CasterSpeaksTls},
      {"HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n\r\nSOURCETABLE 200 OK\r\n",
       PortError::MountpointUnknown},
      {"HTTP/1.1 200 OK\r\n\r\nHTTP/1.0 401 Unauthorized\r\n", PortError::NotAuthorized},
      {"HTTP/1.1 200 OK\r\nWWW-Authenticate: Basic realm=x\r\n\r\nno", PortError::NotAuthorized},
      {"HTTP/1.1 200 OK\r\n\r\nDISCONNECT", PortError::Disconnected},
      {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nA\r\nDISCONNECT\r\n",
       PortError::Disconnected},
      {"HTTP/1.1 200 OK\r\n\r\nERROR - Bad Password\r\n", PortError::NotAuthorized},
      {"HTTP/1.1 200 OK\r\n\r\nnothing that helps\r\n", PortError::NotCorrections},
      {"HTTP/1.1 200 OK\r\nServer", PortError::ReadFailed},
      {"no caster at all", PortError::ReadFailed}};
  for (const auto& [reply, error] : cases) {
    caster.steps = {reply};
    caster.atEnd = PortError::ReadFailed;
    EXPECT_EQ(client.OpenStream("MNT", "", "", progress), error) << reply;
  }
  for (const char* const mark : {"SOURCETABLE 200 OK", "401 Unauthorized", "DISCONNECT"}) {
    const std::string reply = std::string("HTTP/1.1 200 OK\r\n\r\n") + mark;
    for (std::size_t cut = 1; cut < reply.size(); ++cut) {
      caster.steps = {reply.substr(0, cut), reply.substr(cut)};
      EXPECT_NE(client.OpenStream("MNT", "", "", progress), PortError::None)
          << mark << " at " << cut;
    }
  }
  caster.steps = {"HTTP/1.0 401 Unaut", "horized\r\n"};
  EXPECT_EQ(client.OpenStream("MNT", "", "", progress), PortError::NotAuthorized);
}

TEST_F(Client, OpensAStreamThatWaitsForThePosition) {
  for (const std::string type : {"", "Content-Type: gnss/data\r\n"}) {
    caster.steps = {"HTTP/1.1 200 OK\r\n" + type + "\r\n"};
    caster.atEnd = PortError::FewerBytesRead;
    EXPECT_EQ(client.OpenStream("MNT", "", "", progress), PortError::None) << type;
  }
}

TEST_F(Client, AsksForNoMountpointThatItWouldHaveToAlter) {
  for (const char* const name : {"M x", "M\r\nEvil: 1", "M\x7F"}) {
    EXPECT_EQ(client.OpenStream(name, "", "", progress), PortError::NothingGiven);
  }
  EXPECT_EQ(caster.sent, "");
}

TEST_F(Client, SaysWhatACasterAnswered) {
  caster.steps = {"HTTP/1.1 503 Full\x1b[2J\xC2\x9B up\r\nRetry-After: 60\r\n\r\n"};
  EXPECT_EQ(client.ConnectMountpoint({.host = FixedText<128>("h")}, "MNT", progress),
            PortError::MountpointNotConnected);
  EXPECT_EQ(client.cause(), PortError::CasterRefused);
  EXPECT_EQ(client.causeDetail(), "HTTP/1.1 503 Full [2J  up") << "nothing for a terminal to obey";
}

// Data with everything in it that a head or a chunk could be mistaken for.
const std::string kBinary("\xD3\x00\x13\r\n\r\n0\r\n\r\nICY 200 OK\r\nHTTP/1.1 404\r\n\x00\xFF",
                          40);

struct HttpCase {
  const char* what;
  std::string reply;
};

TEST_F(Client, TakesAStreamOverHttpByteForByte) {
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: gnss/data\r\n";
  const HttpCase cases[] = {
      {"version 1.0", "HTTP/1.0 200 OK\r\n\r\n" + kBinary},
      {"version 1.1", head + "Connection: close\r\n\r\n" + kBinary},
      {"bare line feeds", "HTTP/1.1 200 OK\nServer: x\n\n" + kBinary},
      {"chunks", head + "Transfer-Encoding: chunked\r\n\r\n1\r\n" + kBinary.substr(0, 1) +
                     "\r\n027;name=x\r\n" + kBinary.substr(1) + "\r\n"},
      {"chunks and an end",
       head + "transfer-encoding: Chunked\r\n\r\n28 \r\n" + kBinary + "\r\n0\r\n\r\n"}};
  ASSERT_EQ(kBinary.size(), 0x28U);
  for (const HttpCase& http : cases) {
    for (std::size_t piece = 1; piece <= http.reply.size(); piece += piece < 8 ? 1 : 37) {
      SCOPED_TRACE(http.what + std::string(" in pieces of ") + std::to_string(piece));
      caster.steps.clear();
      for (std::size_t at = 0; at < http.reply.size(); at += piece) {
        caster.steps.emplace_back(http.reply.substr(at, piece));
      }
      ASSERT_EQ(client.OpenStream("MNT", "u", "p", progress), PortError::None);
      std::string got;
      while (!caster.steps.empty() || got.size() < kBinary.size()) {
        const std::string bytes = NextBytes();
        if (bytes == "failed") break;
        got += bytes;
      }
      EXPECT_EQ(got, kBinary);
    }
  }
}

TEST_F(Client, EndsAChunkedStreamThatIsDamagedOrOver) {
  const std::string head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (const std::string body :
       {"3\r\nabc\r\n0\r\n\r\nmore", "3\r\nabcXY\r\nmore", "3\r\nabc\r\nzz\r\nmore",
        "3\r\nabc\r\nffffffffffffffffff\r\nmore", "3\r\nabc\r\n-1\r\nmore"}) {
    caster.steps = {head + body};
    ASSERT_EQ(client.OpenStream("MNT", "", "", progress), PortError::None);
    EXPECT_EQ(NextBytes(), "abc") << body;
    char bytes[8];
    std::size_t count = 0;
    EXPECT_EQ(client.Receive(bytes, count, 100), PortError::Disconnected) << body;
  }
}

TEST_F(Client, HeadsWithoutEndAreBounded) {
  caster.steps = {"HTTP/1.1 200 OK\r\n"};
  caster.atEnd = "X-Header: " + std::string(1000, 'x') + "\r\n";
  EXPECT_EQ(client.OpenStream("MNT", "", "", progress), PortError::NoAnswer);
  caster.steps = {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"};
  caster.atEnd = std::string(64, '1');
  ASSERT_EQ(client.OpenStream("MNT", "", "", progress), PortError::None);
  std::string bytes;
  for (int i = 0; i < 20 && bytes.empty(); ++i) bytes = NextBytes();
  EXPECT_EQ(bytes, "failed") << "a chunk size without end";
}

TEST_F(Client, GivesUpAfterAMinuteAndWhenCancelled) {
  caster.steps = {"garbage"};
  caster.atEnd = std::string(1000, 'x');
  EXPECT_EQ(client.OpenStream("MNT", "", "", progress), PortError::NoAnswer);
  EXPECT_GE(progress.values.front(), 25);
  EXPECT_EQ(progress.values.back(), 25 + 60);
  progress.values.clear();
  progress.cancelAfter = 2;
  EXPECT_EQ(client.OpenStream("MNT", "", "", progress), PortError::Cancelled);
}

constexpr const char* kHeader =
    "SOURCETABLE 200 OK\r\nServer: x\r\nContent-Type: text/plain\r\nContent-Length: 60\r\n\r\n";
const std::string kRows =
    "STR;ONE;Place;RTCM 3.1;;2;GPS;N;AUT;47.4;9.6;1;0;g;none;B;N;9600;\r\n"
    "STR;TWO;Town;CMR+;;2;GPS;N;AUT;47.5;189.6;0;1;g;none;B;Y;9600;m\r\n"
    "ENDSOURCETABLE\r\n";

std::string Hex(std::size_t number) {
  char text[20];
  return {text, std::to_chars(text, text + sizeof text, number, 16).ptr};
}

TEST_F(Client, StoresTheTableFromItsFirstStreamOn) {
  const std::vector<std::vector<std::string>> ways = {
      {kHeader + kRows},
      {kHeader, kRows},
      {"SOURCETABLE 200 OK\r\n", std::string(kHeader).substr(20), kRows.substr(0, 2),
       kRows.substr(2)},
      {kHeader + kRows.substr(0, kRows.size() - 10), kRows.substr(kRows.size() - 10)},
      {"HTTP/1.1 200 OK\r\nContent-Type: gnss/sourcetable\r\n\r\n" + kRows},
      {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n40\r\n" + kRows.substr(0, 64),
       "\r\n" + Hex(kRows.size() - 64) + "\r\n" + kRows.substr(64, 9), kRows.substr(73)}};
  for (const auto& pieces : ways) {
    for (const std::string& piece : pieces) caster.steps.emplace_back(piece);
    ASSERT_EQ(client.FetchSourceTable("table.txt", progress), PortError::None);
    EXPECT_EQ(Table(), kRows);
    EXPECT_TRUE(caster.steps.empty()) << "the end is found, no time-out is waited for";
  }
  EXPECT_EQ(progress.values.back(), 90);
}

TEST_F(Client, EndsATableThatStopsComing) {
  caster.steps = {kHeader + kRows.substr(0, 40)};
  ASSERT_EQ(client.FetchSourceTable("table.txt", progress), PortError::None);
  EXPECT_EQ(Table(), kRows.substr(0, 40));
}

TEST_F(Client, TakesATableOfNoStreams) {
  caster.steps = {"SOURCETABLE 200 OK\r\n\r\nENDSOURCETABLE\r\n", PortError::ReadFailed};
  CasterList list{.current = CasterLogin{.host = FixedText<128>("h")}};
  EXPECT_EQ(client.LoadBases(list, progress), PortError::None);
  EXPECT_TRUE(list.streams.empty() && list.complete);
}

TEST_F(Client, KnowsATableThatWasCut) {
  const std::size_t second = kRows.find("STR;TWO");
  CasterList list{.current = CasterLogin{.host = FixedText<128>("h")}};
  for (const std::size_t size : {second, second + 20, kRows.find("ENDSOURCE") + 5}) {
    caster.steps = {kHeader + kRows.substr(0, size), PortError::ReadFailed};
    ASSERT_EQ(client.LoadBases(list, progress), PortError::None);
    EXPECT_FALSE(list.complete) << size;
    EXPECT_EQ(list.streams.size(), size < second + 30 ? 1U : 2U) << "no stream that was cut itself";
  }
  caster.steps = {kHeader + kRows};
  ASSERT_EQ(client.LoadBases(list, progress), PortError::None);
  EXPECT_TRUE(list.complete);
}

TEST_F(Client, LogsInForATableThatNeedsIt) {
  CasterList list{.current = CasterLogin{
                      .host = FixedText<128>("h"), .port = "2101", .user = "u", .password = "p"}};
  caster.steps = {"HTTP/1.0 401 Unauthorized\r\n", kHeader + kRows};
  EXPECT_EQ(client.LoadBases(list, progress), PortError::None);
  EXPECT_EQ(list.streams.size(), 2U);
  const std::size_t login = caster.sent.find("Authorization: Basic dTpw");
  EXPECT_GT(login, caster.sent.find("Connection: close")) << "the first request is without a login";
  EXPECT_NE(login, std::string::npos);
  EXPECT_EQ(caster.performed.size(), 2U);
  list.current->user.clear();
  caster.steps = {"HTTP/1.0 401 Unauthorized\r\n"};
  EXPECT_EQ(client.LoadBases(list, progress), PortError::BasesNotLoaded);
  EXPECT_EQ(client.cause(), PortError::NotAuthorized);
}

TEST_F(Client, NamesWhatHindersATable) {
  caster.steps = {"HTTP/1.0 401 Unauthorized\r\n"};
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::NotAuthorized);
  caster.steps = {"HTTP/1.1 401 No\r\nContent-Length: 4\r\n\r\nSTR;"};
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::NotAuthorized);
  caster.steps = {"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"};
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::CasterRefused);
  EXPECT_EQ(errors.Get().arguments, std::vector<std::string>{"HTTP/1.1 404 Not Found"});
  caster.steps = {"ERROR - Full\r\n", PortError::ReadFailed};
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::CasterRefused);
  EXPECT_EQ(errors.Get().arguments, std::vector<std::string>{"ERROR - Full"});
  caster.steps = {"\x15\x03\x01"};
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::CasterSpeaksTls);
  caster.steps = {"DISCONNECT"};
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::Disconnected);
  caster.steps = {PortError::ReadFailed};
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::ReadFailed);
  caster.steps = {"x"};
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::NoAnswer);
  progress.cancelAfter = static_cast<int>(progress.values.size());
  caster.steps = {kHeader + kRows};
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::Cancelled);
  progress.cancelAfter = 1'000'000;
  caster.steps.clear();
  caster.steps = {"ICY 200 OK\r\nContent-Length: 0\r\n\r\n"};
  caster.atEnd = "x";
  const std::int64_t beforeMs = clock.milliseconds;
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::NoAnswer)
      << "corrections instead of a table";
  EXPECT_LT(clock.milliseconds - beforeMs, 70'000);
  caster.steps.clear();
  caster.atEnd = "STR;" + std::string(1000, 'x') + "\n";
  EXPECT_EQ(client.FetchSourceTable("table.txt", progress), PortError::TableTooLarge)
      << "a table without end";
}

TEST_F(Client, LoadsBases) {
  CasterList list;
  EXPECT_EQ(client.LoadBases(list, progress), PortError::NothingGiven);
  list.current = CasterLogin{.host = FixedText<128>("caster.example"), .port = "2101"};
  caster.steps = {kHeader + kRows};
  ASSERT_EQ(client.LoadBases(list, progress), PortError::None);
  ASSERT_EQ(list.streams.size(), 2U);
  EXPECT_THAT(progress.statuses,
              ElementsAre("Connecting to broadcaster", "Connecting to Server", "Loading bases"));
  EXPECT_EQ(list.streams[1].formatCode, 15);
  EXPECT_THAT(list.MostAlike("tow", 1), ElementsAre("TWO"));
  EXPECT_NEAR(DistanceKm(list.streams[0], 47.4, 9.6), 0.0, 1e-9);
  EXPECT_NEAR(DistanceKm(list.streams[0], 48.4, 9.6), 111.19, 0.1);
  caster.openResult = PortError::OpenFailed;
  EXPECT_EQ(client.LoadBases(list, progress), PortError::BasesNotLoaded);
  EXPECT_EQ(client.cause(), PortError::CasterNotOpened);
  EXPECT_EQ(errors.Get().code, 367);
}

TEST_F(Client, ConnectsAMountpoint) {
  const CasterLogin login{
      .host = FixedText<128>("h"), .port = "2101", .user = "u", .password = "secret"};
  StreamRecord stream;
  stream.mountpoint.Assign("MNT");
  caster.steps = {"ICY 200 OK\r\n"};
  ASSERT_EQ(client.ConnectMountpoint(&login, &stream, progress), PortError::None);
  EXPECT_EQ(progress.statuses.front(), "h:2101 MNT");
  caster.steps = {"SOURCETABLE 200 OK"};
  EXPECT_EQ(client.ConnectMountpoint(&login, &stream, progress), PortError::MountpointNotConnected);
  EXPECT_EQ(client.cause(), PortError::MountpointUnknown);
  EXPECT_EQ(client.ConnectMountpoint(nullptr, &stream, progress), PortError::NothingGiven);
  caster.supported = {NtripOperation::OpenMountpoint, NtripOperation::FetchTable};
  ASSERT_EQ(client.ConnectMountpoint(&login, &stream, progress), PortError::None);
  EXPECT_EQ(caster.performed.back().password, "secret") << "the device logs in by itself";
  for (const LastError& error : errors.History()) {
    for (const std::string& argument : error.arguments)
      EXPECT_EQ(argument.find("secret"), argument.npos);
  }
  NtripClient lost(nullptr, "none", {.clock = clock, .files = files, .errors = errors});
  EXPECT_EQ(lost.Connect("h", "1", progress), PortError::NothingGiven);
  EXPECT_EQ(lost.OpenStream("m", "", "", progress), PortError::NothingGiven);
}

// Whoever does not understand version 2 is asked as of version 1, and from then on so at once; a
// refusal of the user or the mountpoint is one in both.
TEST_F(Client, FallsBackToVersionOne) {
  const CasterLogin login{
      .host = FixedText<128>("h"), .port = "2101", .user = "u", .version = NtripVersion::Two};
  using Steps = std::deque<std::variant<std::string, PortError>>;
  const Steps misunderstood[] = {{PortError::ReadFailed},
                                 {"HTTP/1.1 400 Bad Request\r\n\r\n"},
                                 {"HTTP/1.0 505 x\r\n\r\n"},
                                 {"ERROR - what?\r\n", PortError::ReadFailed}};
  for (const Steps& answer : misunderstood) {
    NtripClient fresh(&caster, "test", {.clock = clock, .files = files, .errors = errors});
    caster.sent.clear();
    caster.steps = answer;
    caster.steps.emplace_back("ICY 200 OK\r\n");
    EXPECT_EQ(fresh.ConnectMountpoint(login, "MNT", progress), PortError::None);
    EXPECT_THAT(caster.sent, testing::StartsWith("GET /MNT HTTP/1.1\r\nHost: h:2101\r\n"));
    EXPECT_THAT(caster.sent, HasSubstr("GET /MNT HTTP/1.0\r\n"));
    caster.sent.clear();
    caster.steps = {"ICY 200 OK\r\n"};
    EXPECT_EQ(fresh.ConnectMountpoint(login, "MNT", progress), PortError::None);
    EXPECT_THAT(caster.sent, testing::StartsWith("GET /MNT HTTP/1.0\r\n"));
  }
  const std::pair<Steps, PortError> understood[] = {
      {{PortError::FewerBytesRead}, PortError::FirstReceiveFailed},
      {{"HTTP/1.1 401 Unauthorized\r\n\r\n"}, PortError::NotAuthorized},
      {{"HTTP/1.1 404 Not Found\r\n\r\n"}, PortError::MountpointUnknown},
      {{"HTTP/1.1 503 busy\r\n\r\n"}, PortError::CasterRefused}};
  for (const auto& [answer, cause] : understood) {
    caster.sent.clear();
    caster.steps = answer;
    EXPECT_EQ(client.ConnectMountpoint(login, "MNT", progress), PortError::MountpointNotConnected);
    EXPECT_EQ(client.cause(), cause);
    EXPECT_EQ(caster.sent.find("HTTP/1.0"), std::string::npos);
  }
}

TEST(Records, HaveFieldsBetweenQuotes) {
  LastErrorRecord errors;
  StreamRecord stream;
  ASSERT_EQ(
      ParseStreamRecord("STR;M;\"Here; there\";RTCM 3.1;\"1004(1);1005\";2;\"G\"PS\";\"\";CHE;"
                        "47.2;9.6;1",
                        RecordOrigin::Caster, stream, errors),
      PortError::None);
  EXPECT_EQ(stream.identifier.view(), "Here; there");
  EXPECT_EQ(stream.formatDetails.view(), "1004(1);1005");
  EXPECT_EQ(stream.navSystem.view(), "G\"PS");
  EXPECT_EQ(stream.network.view(), "");
  EXPECT_EQ(stream.country.view(), "CHE");
  EXPECT_TRUE(stream.nmea);
  ASSERT_EQ(
      ParseStreamRecord("STR;M;\"open;RTCM 3.1;d;2;GPS\"x;n", RecordOrigin::Caster, stream, errors),
      PortError::None);
  EXPECT_EQ(stream.identifier.view(), "\"open");
  EXPECT_EQ(stream.navSystem.view(), "GPS\"x");
}

TEST(Records, AreReadAndWritten) {
  LastErrorRecord errors;
  StreamRecord stream;
  ASSERT_EQ(ParseStreamRecord("STR;RTCM3_MAX;Feldkirch;RTCM 3.1;1004(1);2;GPS+GLO;APOS;AUT;47.20;"
                              "-9.60;1;1;GNSMART;none;B;Y;9600;misc;a;b;c;1\r\n",
                              RecordOrigin::Caster, stream, errors),
            PortError::None);
  EXPECT_EQ(stream.formatCode, 39);
  EXPECT_EQ(stream.carrier, 2);
  EXPECT_TRUE(stream.nmea && stream.solution && stream.fee && stream.flag);
  EXPECT_EQ(stream.authentication, 'B');
  EXPECT_EQ(StreamPositionText(stream), "47.20N 9.60W Feldkirch, AUT");
  EXPECT_EQ(StreamRecordLine(stream),
            "STR;RTCM3_MAX;Feldkirch;RTCM 3.1;1004(1);2;GPS+GLO;APOS;AUT;47.20;-9.60;1;1;GNSMART;"
            "none;B;1;9600;misc;a;b;c;1\r\n");
  EXPECT_EQ(ParseStreamRecord("STRANGE;1", RecordOrigin::Caster, stream, errors),
            PortError::NotARecord);
  EXPECT_EQ(errors.Get().code, 32);
  StreamRecord cut;
  ASSERT_EQ(ParseStreamRecord("STR;" + std::string(40, 'm'), RecordOrigin::Caster, cut, errors),
            PortError::None);
  EXPECT_EQ(cut.mountpoint.view(), std::string(32, 'm'));
  EXPECT_EQ(cut.bitrate, 0);

  CasterRecord caster;
  ASSERT_EQ(ParseCasterRecord("CAS;host;2101x;Id;Op;1;DEU;50.1;8.6;fall;2102;t1;t2;1",
                              RecordOrigin::OwnList, caster, errors),
            PortError::None);
  EXPECT_EQ(caster.PortNumber(), 2101);
  EXPECT_EQ(CasterRecordLine(caster),
            "CAS;host;2101x;Id;Op;1;DEU;50.10;8.60;fall;2102;t1;t2;1\r\n");
  ASSERT_EQ(ParseCasterRecord("CAS;host;2101;Id;Op;1;DEU;50.1;8.6;fall;2102;t1;t2;1",
                              RecordOrigin::Caster, caster, errors),
            PortError::None);
  EXPECT_TRUE(caster.fallbackPort.empty() && !caster.flag);
  EXPECT_EQ(ParseCasterRecord("CAS;host;;Id", RecordOrigin::Caster, caster, errors),
            PortError::NoHostOrPort);
  EXPECT_EQ(errors.Get().code, 39);
  EXPECT_EQ(ParseCasterRecord("NET;a", RecordOrigin::Caster, caster, errors),
            PortError::NotARecord);
}

TEST(Records, HoldNoNumberThatIsNone) {
  LastErrorRecord errors;
  StreamRecord stream;
  ASSERT_EQ(ParseStreamRecord("STR;A;b;c;d;1e999;f;g;AUT;1e999;-1e999;0;0", RecordOrigin::Caster,
                              stream, errors),
            PortError::None);
  EXPECT_EQ(StreamPositionText(stream), "0.00N 0.00E b, AUT");
}

TEST(Records, HaveAFormatCode) {
  const std::pair<const char*, int> cases[] = {{"RTCM 2.1", 36}, {"RTCM 2.2", 37}, {"RTCM 2.3", 38},
                                               {"RTCM 3.0", 39}, {"RTCM 3.1", 39}, {"RTCM3.2", 39},
                                               {"RTCM", 16},     {"CMR+", 15},     {"CMRx", 12},
                                               {"RTCA", 17},     {"rtcm3", 47},    {"", 47}};
  for (const auto& [format, code] : cases) EXPECT_EQ(CorrectionFormatCode(format), code) << format;
}

TEST(Records, OfAPublicCasterAreAllRead) {
  LastErrorRecord errors;
  CasterList list;
  ASSERT_EQ(
      list.ReadTable(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/ntrip/sourcetable_sapos.txt",
                     RecordOrigin::Caster, errors),
      PortError::None);
  EXPECT_TRUE(list.complete);
  EXPECT_EQ(list.casters.size(), 15U);
  EXPECT_EQ(list.streams.size(), 4U);
  for (const StreamRecord& stream : list.streams) {
    StreamRecord again;
    ASSERT_EQ(ParseStreamRecord(StreamRecordLine(stream), RecordOrigin::OwnList, again, errors),
              PortError::None);
    EXPECT_EQ(StreamRecordLine(again), StreamRecordLine(stream));
  }
}

}  // namespace
}  // namespace tarvex
