// Casters by TLS: Debian's socat in front of our trial caster, with certificates that are right and
// wrong in every way. Skipped by name where socat or openssl is not installed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <array>
#include <memory>
#include <string>
#include <thread>

#include "gnss/caster/loopback_caster.h"
#include "gnss/corrections/correction_status.h"
#include "gnss/ntrip/client.h"
#include "gnss/ntrip/tcp_connection.h"
#include "platform/run_time_library.h"
#include "platform/tcp_socket.h"
#include "tests/support/certificates.h"
#include "tests/support/loopback_listener.h"
#include "tests/support/peer.h"
#include "tls/tls_device.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

constexpr std::uint32_t kHandshakeMs = 5000;

std::string Data() {
  std::string data;
  for (int i = 0; i < 100'000; ++i) data += static_cast<char>(i * 31 + i / 256);
  return data;
}

int FreePort() {
  DeviceStatus status;
  const auto listener = ListenOnLoopback(0, status);
  return listener ? listener->port() : 0;
}

// What the far end's listener does with the one who comes.
class OneVisitor {
 public:
  template <typename Action>
  explicit OneVisitor(Action action)
      : thread_([this, action] {
          const int visitor = listener_.Accept();
          action(visitor);
          ::close(visitor);
        }) {}
  ~OneVisitor() { listener_.Leave(); }

  std::string target() const { return listener_.target(); }

 private:
  LoopbackListener listener_;
  std::jthread thread_;
};

class TlsCaster : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    AddRunTimeLibraryFolder(TARVEX_MODULE_FOLDER);
    if (!Installed("socat") || !Installed("openssl")) return;
    certificates = std::make_unique<Certificates>();
    made = certificates->MakeAuthority() &&
           certificates->Make("right", "DNS:localhost,IP:127.0.0.1", 2) &&
           certificates->Make("other", "DNS:other.example,DNS:*.elsewhere.example", 2) &&
           certificates->Make("expired", "DNS:localhost,IP:127.0.0.1", -1) &&
           certificates->MakeSelfSigned("self", "Somebody");
  }
  static void TearDownTestSuite() { certificates.reset(); }

  void SetUp() override {
    if (certificates == nullptr) GTEST_SKIP() << "socat or openssl is not installed";
    ASSERT_TRUE(made) << "openssl made no certificates";
    std::string why;
    if (SystemRunTimeLibraries().Load("tls.dll", why) == nullptr) GTEST_SKIP() << why;
  }

  // A caster behind TLS with this certificate.
  void Serve(const std::string& certificate, CasterContent content = {.data = "corrections"}) {
    content.stream.mountpoint.Assign("TEST");
    caster = std::make_unique<LoopbackCaster>(std::move(content), SystemClock());
    ASSERT_TRUE(caster->Start(0).ok());
    port = FreePort();
    front = std::make_unique<Peer>(std::vector<std::string>{
        "socat",
        "OPENSSL-LISTEN:" + std::to_string(port) + ",bind=127.0.0.1,reuseaddr,fork,verify=0,cert=" +
            certificates->Path(certificate + ".pem") +
            ",key=" + certificates->Path(certificate + ".key"),
        "TCP:127.0.0.1:" + std::to_string(caster->port())});
    ASSERT_TRUE(Eventually([&] { return TargetOpens(); }));
  }

  bool TargetOpens() const {
    return MakeTcpDevice(1000)->Open("127.0.0.1:" + std::to_string(port)).ok();
  }

  // Opens `target` by TLS; the sentence of what went wrong.
  static std::string Refusal(const std::string& target, const std::string& authority,
                             std::uint32_t handshakeMs = kHandshakeMs) {
    const auto device = MakeTlsDevice(MakeTcpDevice(1000), authority, handshakeMs);
    const DeviceStatus status = device->Open(target);
    EXPECT_EQ(device->isOpen(), status.ok());
    return status.ok() ? "" : device->Explain(status);
  }
  std::string RefusalOf(const std::string& host) const {
    return Refusal(host + ":" + std::to_string(port), certificates->Path("authority.pem"));
  }

  static CasterDeviceMaker Maker(const std::string& authority) {
    return [authority](std::uint32_t timeoutMs, StopAsked stop) {
      return MakeTlsDevice(MakeTcpDevice(timeoutMs, std::move(stop)), authority, timeoutMs);
    };
  }

  static std::unique_ptr<Certificates> certificates;
  static bool made;
  std::unique_ptr<LoopbackCaster> caster;
  std::unique_ptr<Peer> front;
  int port = 0;
};

std::unique_ptr<Certificates> TlsCaster::certificates;
bool TlsCaster::made = false;

TEST_F(TlsCaster, StreamsEveryByteOfARightOne) {
  const std::string data = Data();
  Serve("right", {.user = "me", .password = "secret", .data = data, .bytesPerSecond = 0});
  LastErrorRecord errors;
  const auto connection =
      MakeTcpNtripConnection(errors, {}, Maker(certificates->Path("authority.pem")));
  NtripClient client(connection.get(), "test",
                     {.clock = SystemClock(), .files = SystemFiles(), .errors = errors});
  CasterLogin login{.host = FixedText<128>("localhost"),
                    .port = std::to_string(port),
                    .user = "me",
                    .password = "secret",
                    .version = NtripVersion::Two,
                    .encrypted = true};
  NoProgress progress;
  ASSERT_EQ(client.ConnectMountpoint(login, "TEST", progress), PortError::None)
      << client.causeDetail();
  std::string got;
  std::array<char, 65536> piece;
  while (got.size() < data.size()) {
    std::size_t count = 0;
    ASSERT_EQ(client.Receive(piece, count, 5000), PortError::None) << got.size();
    got.append(piece.data(), count);
  }
  EXPECT_TRUE(got.starts_with(data));
  ASSERT_EQ(client.Send("$GPGGA,up\r\n", 1000), PortError::None);
  std::vector<std::string> uploads;
  EXPECT_TRUE(Eventually([&] {
    uploads = caster->TakeUploads();
    return !uploads.empty();
  }));
  EXPECT_THAT(uploads, testing::Contains(HasSubstr("$GPGGA,up")));

  // The front goes: the stream is lost, not silent.
  front.reset();
  caster.reset();
  PortError error = PortError::None;
  for (int i = 0; i < 1'000'000 && error == PortError::None; ++i) {
    std::size_t count = 0;
    error = client.Receive(piece, count, 5000);  // what is still on its way
  }
  EXPECT_EQ(error, PortError::ReadFailed);
}

TEST_F(TlsCaster, NamesWhatIsWrongWithACertificate) {
  Serve("right");
  EXPECT_EQ(RefusalOf("localhost"), "");
  EXPECT_EQ(RefusalOf("127.0.0.1"), "");
  EXPECT_THAT(Refusal("localhost:" + std::to_string(port), ""),
              HasSubstr("signed by Trial Authority, who is not known"));
  Serve("other");
  EXPECT_THAT(RefusalOf("localhost"),
              HasSubstr("is for other.example, *.elsewhere.example, not for localhost"));
  EXPECT_THAT(RefusalOf("127.0.0.1"), HasSubstr("not for 127.0.0.1"));
  Serve("expired");
  EXPECT_THAT(RefusalOf("localhost"), HasSubstr("has expired (20"));
  Serve("self");
  EXPECT_THAT(RefusalOf("localhost"), HasSubstr("(Somebody) is signed by itself"));
  // Unless that very certificate is trusted.
  EXPECT_EQ(Refusal("localhost:" + std::to_string(port), certificates->Path("self.pem")), "");
  EXPECT_EQ(caster->requests(), 0U);
}

TEST_F(TlsCaster, NamesAFarEndThatDoesNotShakeHands) {
  const std::string authority = certificates->Path("authority.pem");
  std::string heard;
  const auto hear = [&heard](int visitor) {
    char bytes[4096];
    const ssize_t count = ::read(visitor, bytes, sizeof bytes);
    heard.assign(bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  };
  {
    const OneVisitor cutting(hear);
    EXPECT_THAT(Refusal(cutting.target(), authority), HasSubstr("broke off the TLS handshake"));
  }
  {
    const OneVisitor plain([&](int visitor) {
      hear(visitor);
      EXPECT_GT(::write(visitor, "SOURCETABLE 200 OK\r\n", 20), 0);
    });
    EXPECT_THAT(Refusal(plain.target(), authority),
                HasSubstr("does not speak TLS (it says \"SOURCETABLE 200 OK\")"));
  }
  {
    const OneVisitor silent([&](int visitor) {
      hear(visitor);
      hear(visitor);
    });
    EXPECT_THAT(Refusal(silent.target(), authority, 300), HasSubstr("does not answer the TLS"));
  }
  EXPECT_THAT(Refusal("127.0.0.1:1", "/no/such/file"), HasSubstr("/no/such/file"));
}

TEST_F(TlsCaster, SendsNothingInTheClear) {
  std::string heard;
  {
    const OneVisitor plain([&](int visitor) {
      char bytes[4096];
      for (ssize_t n = 0; (n = ::read(visitor, bytes, sizeof bytes)) > 0;) {
        heard.append(bytes, static_cast<std::size_t>(n));
        if (heard.size() == static_cast<std::size_t>(n)) {
          EXPECT_GT(::write(visitor, "ICY 200 OK\r\n", 12), 0);
        }
      }
    });
    LastErrorRecord errors;
    const auto connection = MakeTcpNtripConnection(errors, {}, Maker(""));
    NtripClient client(connection.get(), "test",
                       {.clock = SystemClock(), .files = SystemFiles(), .errors = errors});
    CasterLogin login{.host = FixedText<128>("127.0.0.1"),
                      .port = plain.target().substr(plain.target().find(':') + 1),
                      .user = "me",
                      .password = "secret",
                      .encrypted = true};
    NoProgress progress;
    EXPECT_EQ(client.ConnectMountpoint(login, "TEST", progress), PortError::MountpointNotConnected);
    EXPECT_THAT(CasterFailureSentence(CasterName(login), client.cause(), client.causeDetail()),
                HasSubstr("cannot be reached: the server at this port does not speak TLS"));
  }
  EXPECT_FALSE(heard.empty());
  EXPECT_EQ(heard.find("GET"), std::string::npos);
  EXPECT_EQ(heard.find("Basic"), std::string::npos);
}

TEST_F(TlsCaster, AHandshakeCanBeStopped) {
  const OneVisitor silent([](int visitor) {
    char bytes[4096];
    while (::read(visitor, bytes, sizeof bytes) > 0) {
    }
  });
  int asked = 0;
  const auto device = MakeTlsDevice(MakeTcpDevice(1000, [&] { return ++asked > 5; }), "", 60'000);
  EXPECT_TRUE(device->Open(silent.target()).cancelled());
}

// Passes bytes on between the two until `length` of them have come from the server.
void RelayUntil(int visitor, int server, std::size_t length) {
  std::array<char, 4096> bytes;
  std::size_t passed = 0;
  std::array<pollfd, 2> ends{{{.fd = visitor, .events = POLLIN, .revents = 0},
                              {.fd = server, .events = POLLIN, .revents = 0}}};
  while (passed < length && ::poll(ends.data(), 2, 5000) > 0) {
    const bool fromServer = ends[1].revents != 0;
    const std::size_t most = fromServer ? std::min(bytes.size(), length - passed) : bytes.size();
    const ssize_t count = ::read(fromServer ? server : visitor, bytes.data(), most);
    if (count <= 0) return;
    if (fromServer) passed += static_cast<std::size_t>(count);
    if (::write(fromServer ? visitor : server, bytes.data(), static_cast<std::size_t>(count)) < 0) {
      return;
    }
  }
}

// A handshake that is cut anywhere is a named failure, and never a connection.
TEST_F(TlsCaster, ACutAtAnyByteIsNamed) {
  Serve("right");
  for (std::size_t length = 1; length < 800; length += 37) {
    const OneVisitor cutting([&](int visitor) {
      const int server = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
      sockaddr_in address{};
      address.sin_family = AF_INET;
      address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
      address.sin_port = htons(static_cast<std::uint16_t>(port));
      ASSERT_EQ(::connect(server, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
      RelayUntil(visitor, server, length);
      ::close(server);
    });
    EXPECT_THAT(Refusal(cutting.target(), certificates->Path("authority.pem")),
                HasSubstr("broke off the TLS handshake"))
        << length;
  }
}

}  // namespace
}  // namespace tarvex
