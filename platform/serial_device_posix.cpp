// Serial lines of a Linux system, through termios2 so that any baud rate can be set.
#include <asm/termbits.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <utility>

#include "platform/descriptor_device_posix.h"
#include "platform/serial_device.h"

namespace tarvex {
namespace {

constexpr std::size_t kReadAhead = 4096;
constexpr std::int64_t kFlushLimitUs = 10'000'000;
constexpr std::int64_t kFlushStepUs = 5'000;

constexpr tcflag_t kInputBaudShift = 16;  // IBSHIFT

DeviceStatus Failed() {
  return {errno};
}

tcflag_t CharacterSize(std::uint32_t dataBits) {
  switch (dataBits) {
    case 5:
      return CS5;
    case 6:
      return CS6;
    case 7:
      return CS7;
    default:
      return CS8;
  }
}

tcflag_t ParityFlags(SerialParity parity) {
  switch (parity) {
    case SerialParity::Even:
      return PARENB;
    case SerialParity::Odd:
      return PARENB | PARODD;
    case SerialParity::Mark:
      return PARENB | PARODD | CMSPAR;
    case SerialParity::Space:
      return PARENB | CMSPAR;
    case SerialParity::None:
      break;
  }
  return 0;
}

// One and a half stop bits exist with five data bits only, where CSTOPB means them.
bool Possible(const SerialLine& line) {
  if (line.baudRate == 0) return false;  // would hang up
  if (line.dataBits < 5 || line.dataBits > 8) return false;
  return line.stopBits != SerialStopBits::OneAndHalf || line.dataBits == 5;
}

void Apply(const SerialLine& line, termios2& settings) {
  settings.c_iflag = line.parity == SerialParity::None ? 0 : INPCK;
  settings.c_oflag = 0;
  settings.c_lflag = 0;
  settings.c_cflag &= ~static_cast<tcflag_t>(CBAUD | (CBAUD << kInputBaudShift) | CSIZE | PARENB |
                                             PARODD | CMSPAR | CSTOPB | CRTSCTS);
  settings.c_cflag |= BOTHER | (BOTHER << kInputBaudShift) | CREAD | CLOCAL |
                      CharacterSize(line.dataBits) | ParityFlags(line.parity);
  if (line.stopBits != SerialStopBits::One) settings.c_cflag |= CSTOPB;
  settings.c_ispeed = settings.c_ospeed = line.baudRate;
  settings.c_cc[VMIN] = 1;  // so that an idle line differs from one that hung up
  settings.c_cc[VTIME] = 0;
}

SerialParity ParityOf(tcflag_t flags) {
  if ((flags & PARENB) == 0) return SerialParity::None;
  const bool odd = (flags & PARODD) != 0;
  if ((flags & CMSPAR) != 0) return odd ? SerialParity::Mark : SerialParity::Space;
  return odd ? SerialParity::Odd : SerialParity::Even;
}

SerialLine LineOf(const termios2& settings) {
  SerialLine line;
  line.baudRate = settings.c_ospeed;
  line.dataBits = 5 + ((settings.c_cflag & CSIZE) >> 4);
  line.parity = ParityOf(settings.c_cflag);
  if ((settings.c_cflag & CSTOPB) != 0) {
    line.stopBits = line.dataBits == 5 ? SerialStopBits::OneAndHalf : SerialStopBits::Two;
  }
  return line;
}

// Drivers take what they cannot do without a word and keep something else. A rate may differ as far
// as serial lines allow: adapters divide a clock.
bool Keeps(const SerialLine& kept, const SerialLine& wanted) {
  constexpr std::uint32_t kTolerated = 20;  // a twentieth
  const std::uint32_t difference = kept.baudRate > wanted.baudRate
                                       ? kept.baudRate - wanted.baudRate
                                       : wanted.baudRate - kept.baudRate;
  return kept.dataBits == wanted.dataBits && kept.parity == wanted.parity &&
         kept.stopBits == wanted.stopBits && difference <= wanted.baudRate / kTolerated;
}

// "COM3:" is the third of this machine's own serial lines.
std::string PathOf(const std::string& name) {
  constexpr std::string_view kCom = "COM";
  std::string_view digits = name;
  if (!digits.starts_with(kCom)) return name;
  digits.remove_prefix(kCom.size());
  if (digits.ends_with(':')) digits.remove_suffix(1);
  int number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [at, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc{} || at != end || number < 1) return name;
  return "/dev/ttyS" + std::to_string(number - 1);
}

class LinuxSerialDevice final : public DescriptorDevice<SerialDevice> {
 public:
  explicit LinuxSerialDevice(StopAsked stop)
      : DescriptorDevice(DescriptorKind::Device, kReadAhead, std::move(stop)) {}
  LinuxSerialDevice(const LinuxSerialDevice&) = delete;
  LinuxSerialDevice& operator=(const LinuxSerialDevice&) = delete;
  ~LinuxSerialDevice() override { (void)CloseDescriptor(); }

  DeviceStatus Open(const std::string& name) override {
    (void)CloseDescriptor();
    descriptor_ = ::open(PathOf(name).c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor_ < 0) return Failed();
    if (const DeviceStatus status = TakeAlone(); !status.ok()) {
      ::close(descriptor_);
      descriptor_ = -1;
      return status;
    }
    return {};
  }

  DeviceStatus Close() override { return CloseDescriptor(); }

  DeviceStatus PurgeInput() override {
    reader_.Clear();
    return Control(TCFLSH, TCIFLUSH);
  }
  DeviceStatus PurgeOutput() override { return Control(TCFLSH, TCOFLUSH); }

  DeviceStatus GetLine(SerialLine& line) override {
    termios2 settings{};
    if (::ioctl(descriptor_, TCGETS2, &settings) != 0) return Failed();
    line = LineOf(settings);
    return {};
  }

  DeviceStatus SetLine(const SerialLine& line) override {
    if (!Possible(line)) return {EINVAL};
    termios2 before{};
    if (::ioctl(descriptor_, TCGETS2, &before) != 0) return Failed();
    termios2 settings = before;
    Apply(line, settings);
    if (::ioctl(descriptor_, TCSETS2, &settings) != 0) return Failed();
    SerialLine kept;
    if (!GetLine(kept).ok() || !Keeps(kept, line)) {
      (void)::ioctl(descriptor_, TCSETS2, &before);
      return {EINVAL};
    }
    int linesOn = TIOCM_DTR | TIOCM_RTS;
    (void)::ioctl(descriptor_, TIOCMBIS, &linesOn);  // a pseudo-terminal has no such lines
    return {};
  }

  DeviceStatus SetBreak() override { return Control(TIOCSBRK, 0); }
  DeviceStatus ClearBreak() override { return Control(TIOCCBRK, 0); }

  // The driver counts line errors and goes on by itself: there is no state to clear.
  DeviceStatus ClearErrors() override {
    int queued = 0;
    return ::ioctl(descriptor_, FIONREAD, &queued) == 0 ? DeviceStatus{} : Failed();
  }

  // Polled instead of tcdrain, which waits for ever on a line whose far end holds it up.
  DeviceStatus Flush() override {
    const std::int64_t limitUs = SteadyMicroseconds() + kFlushLimitUs;
    for (;;) {
      int queued = 0;
      if (::ioctl(descriptor_, TIOCOUTQ, &queued) != 0) return Failed();
      if (queued == 0) return {};
      if (SteadyMicroseconds() > limitUs) return {ETIMEDOUT};
      bool ready = false;  // no event is asked for: this is a pause that ends on a hang-up
      const DeviceStatus status =
          WaitFor(descriptor_, 0, SteadyMicroseconds() + kFlushStepUs, ready);
      if (!status.ok()) return status;
      if (ready) return {EIO};
    }
  }

  // The kernel sizes its own queues.
  DeviceStatus SetQueueSizes(std::uint32_t /*in*/, std::uint32_t /*out*/) override {
    return isOpen() ? DeviceStatus{} : DeviceStatus{EBADF};
  }

  DeviceStatus GetDsr(bool& on) override {
    int lines = 0;
    if (::ioctl(descriptor_, TIOCMGET, &lines) != 0) return Failed();
    on = (lines & TIOCM_DSR) != 0;
    return {};
  }

 private:
  // TIOCEXCL keeps other users off, the lock keeps off a second one of a privileged user.
  DeviceStatus TakeAlone() {
    termios2 settings{};
    if (::ioctl(descriptor_, TCGETS2, &settings) != 0) return Failed();
    if (::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
      return {errno == EWOULDBLOCK ? EBUSY : errno};
    }
    return Control(TIOCEXCL, 0);
  }

  // The exclusive mark would outlive the descriptor while anybody else holds the device open.
  DeviceStatus CloseDescriptor() {
    reader_.Clear();
    if (descriptor_ < 0) return {};
    (void)::ioctl(descriptor_, TIOCNXCL);
    const int closed = ::close(descriptor_);
    descriptor_ = -1;
    return closed == 0 ? DeviceStatus{} : Failed();
  }

  DeviceStatus Control(unsigned long request, int argument) {
    return ::ioctl(descriptor_, request, argument) == 0 ? DeviceStatus{} : Failed();
  }
};

}  // namespace

std::unique_ptr<SerialDevice> MakeSerialDevice(StopAsked stop) {
  return std::make_unique<LinuxSerialDevice>(std::move(stop));
}

}  // namespace tarvex
