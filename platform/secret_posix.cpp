// Passwords on a POSIX system.
#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

#include "platform/secret.h"

namespace tarvex {
namespace {

constexpr std::size_t kLongestSecret = 1024;

class Descriptor {
 public:
  Descriptor(const char* path, int flags) : descriptor_(::open(path, flags | O_CLOEXEC)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

// Up to the end of the line; false when nothing at all came.
bool ReadFirstLine(int descriptor, std::string& line) {
  line.clear();
  char c = 0;
  while (line.size() < kLongestSecret) {
    const ssize_t n = ::read(descriptor, &c, 1);
    if (n < 0 && errno == EINTR) return false;
    if (n <= 0) return !line.empty();
    if (c == '\n') break;
    line += c;
  }
  if (line.ends_with('\r')) line.pop_back();
  return true;
}

void Say(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t n = ::write(descriptor, text.data(), text.size());
    if (n <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(n));
  }
}

}  // namespace

SecretResult ReadSecretFile(const std::string& path, std::string& secret) {
  const Descriptor file(path.c_str(), O_RDONLY);
  struct stat info{};
  if (file.get() < 0 || ::fstat(file.get(), &info) != 0) return SecretResult::Missing;
  if ((info.st_mode & (S_IRWXG | S_IRWXO)) != 0) return SecretResult::OpenToOthers;
  return ReadFirstLine(file.get(), secret) ? SecretResult::Found : SecretResult::Missing;
}

SecretResult AskSecret(const std::string& question, std::string& secret) {
  const Descriptor terminal("/dev/tty", O_RDWR | O_NOCTTY);
  termios before{};
  if (terminal.get() < 0 || ::tcgetattr(terminal.get(), &before) != 0) {
    return SecretResult::Missing;
  }
  termios silent = before;
  silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  ::tcsetattr(terminal.get(), TCSAFLUSH, &silent);
  Say(terminal.get(), question);
  const bool answered = ReadFirstLine(terminal.get(), secret);
  ::tcsetattr(terminal.get(), TCSAFLUSH, &before);
  Say(terminal.get(), "\n");
  return answered ? SecretResult::Found : SecretResult::Missing;
}

}  // namespace tarvex
