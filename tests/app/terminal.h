// A pseudo-terminal in place of the streams of the test, and of the programs that it starts.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

namespace tarvex {

/// The standard input and error of this process are a pseudo-terminal, the test holds its master.
class Terminal {
 public:
  Terminal() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)) {
    EXPECT_EQ(::grantpt(master_), 0);
    EXPECT_EQ(::unlockpt(master_), 0);
    const int slave = ::open(::ptsname(master_), O_RDWR | O_NOCTTY);
    for (const int stream : {STDIN_FILENO, STDERR_FILENO}) {
      kept_[static_cast<std::size_t>(stream)] = ::dup(stream);
      ::dup2(slave, stream);
    }
    ::close(slave);
  }
  ~Terminal() {
    for (const int stream : {STDIN_FILENO, STDERR_FILENO}) {
      ::dup2(kept_[static_cast<std::size_t>(stream)], stream);
      ::close(kept_[static_cast<std::size_t>(stream)]);
    }
    ::close(master_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void Type(std::string_view text) const {
    EXPECT_EQ(::write(master_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  /// Takes what was shown since.
  void Look() {
    std::array<char, 4096> bytes;
    for (ssize_t got = 0; (got = ::read(master_, bytes.data(), bytes.size())) > 0;) {
      shown.append(bytes.data(), static_cast<std::size_t>(got));
    }
  }

  /// Waits until `text` is shown behind what the last call found; false after ten seconds.
  bool WaitFor(std::string_view text) {
    for (int i = 0; i < 1000; ++i) {
      Look();
      const std::size_t at = shown.find(text, found_);
      if (at != std::string::npos) return found_ = at + text.size(), true;
      ::poll(nullptr, 0, 10);
    }
    return false;
  }
  /// Lines are typed whole and shown, as a shell finds them.
  bool IsAsAShellWants() const {
    termios now{};
    return ::tcgetattr(master_, &now) == 0 && (now.c_lflag & ICANON) != 0 &&
           (now.c_lflag & ECHO) != 0;
  }
  void SetWidth(unsigned short columns) const {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = columns;
    EXPECT_EQ(::ioctl(master_, TIOCSWINSZ, &size), 0);
  }

  std::string shown;

 private:
  std::size_t found_ = 0;
  int master_;
  std::array<int, 3> kept_ = {};
};

}  // namespace tarvex
