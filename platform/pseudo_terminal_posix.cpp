// Pseudo-terminals of a POSIX system.
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "platform/descriptor_io_posix.h"
#include "platform/pseudo_terminal.h"

namespace tarvex {
namespace {

// The settings stay with the device after this descriptor is closed.
DeviceStatus MakeRaw(const std::string& name) {
  const int device = ::open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (device < 0) return {errno};
  termios settings{};
  const bool made = ::tcgetattr(device, &settings) == 0;
  ::cfmakeraw(&settings);
  const DeviceStatus status{made && ::tcsetattr(device, TCSANOW, &settings) == 0 ? 0 : errno};
  ::close(device);
  return status;
}

class Master final : public PseudoTerminal {
 public:
  Master(int descriptor, std::string name) : descriptor_(descriptor), name_(std::move(name)) {}
  Master(const Master&) = delete;
  Master& operator=(const Master&) = delete;
  ~Master() override { ::close(descriptor_); }

  const std::string& deviceName() const override { return name_; }

  bool HasReader() override {
    pollfd wanted{.fd = descriptor_, .events = POLLOUT, .revents = 0};
    return ::poll(&wanted, 1, 0) >= 0 && (wanted.revents & POLLHUP) == 0;
  }

  DeviceStatus Write(std::string_view bytes, const WriteTimeouts& timeouts,
                     std::size_t& written) override {
    return WriteWithin(descriptor_, DescriptorKind::Device, timeouts, bytes, written);
  }

  // Without a reader the device answers with an error, which is no failure of ours.
  DeviceStatus TakeInput(std::span<char> out, std::size_t& got) override {
    const ssize_t n = ::read(descriptor_, out.data(), out.size());
    got = n > 0 ? static_cast<std::size_t>(n) : 0;
    return {n >= 0 || errno == EAGAIN || errno == EIO || errno == EINTR ? 0 : errno};
  }

 private:
  int descriptor_;
  std::string name_;
};

}  // namespace

std::unique_ptr<PseudoTerminal> MakePseudoTerminal(DeviceStatus& status) {
  const int descriptor = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  std::array<char, 128> name{};
  if (descriptor < 0) {
    status = {errno};
    return nullptr;
  }
  if (::grantpt(descriptor) != 0 || ::unlockpt(descriptor) != 0 ||
      ::ptsname_r(descriptor, name.data(), name.size()) != 0) {
    status = {errno};
  } else {
    status = MakeRaw(name.data());
  }
  if (!status.ok()) {
    ::close(descriptor);
    return nullptr;
  }
  return std::make_unique<Master>(descriptor, name.data());
}

}  // namespace tarvex
