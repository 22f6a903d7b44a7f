#include "app/cli/key_reader.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace tarvex {
namespace {

constexpr int kLookAgainMs = 100;
constexpr std::array kDeadly = {SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL};

// How the terminal was; for the handlers of signals too, which can ask no object.
termios asItWas{};
std::atomic<bool> changed = false;
static_assert(std::atomic<bool>::is_always_lock_free);

// A program in the background must not touch the terminal: it would be stopped, and the terminal
// is another's.
bool IsInForeground() {
  const pid_t holder = ::tcgetpgrp(STDIN_FILENO);
  return holder < 0 || holder == ::getpgrp();
}

// Takes keys one by one and shows none. False when there is nothing to do or it cannot be done.
void TakeSingleKeys() {
  termios now{};
  if (::tcgetattr(STDIN_FILENO, &now) != 0 || (now.c_lflag & ICANON) == 0) return;
  asItWas = now;
  now.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  now.c_cc[VMIN] = 1;
  now.c_cc[VTIME] = 0;
  changed = true;
  (void)::tcsetattr(STDIN_FILENO, TCSANOW, &now);
}

void PutTerminalBack() {
  if (!changed || !IsInForeground()) return;
  (void)::tcsetattr(STDIN_FILENO, TCSANOW, &asItWas);
  changed = false;
}

// Ctrl-Z: when the program is continued, the reading thread takes the terminal again.
void StopAndContinue(int) {
  PutTerminalBack();
  (void)::raise(SIGSTOP);
}

void PutBackAndDie(int signal) {
  PutTerminalBack();
  (void)::raise(signal);
}

void Handle(int signal, void (*handler)(int), int flags) {
  struct sigaction action{};
  if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) return;
  action.sa_handler = handler;
  action.sa_flags = flags;
  ::sigaction(signal, &action, nullptr);
}

void HandleNoMore(int signal) {
  struct sigaction action{};
  if (::sigaction(signal, nullptr, &action) != 0) return;
  if (action.sa_handler != StopAndContinue && action.sa_handler != PutBackAndDie) return;
  action.sa_handler = SIG_DFL;
  action.sa_flags = 0;
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

bool HasKeysAndScreen(Console& console) {
  return console.IsTyped() && console.ShowsProgress();
}

KeyReader::KeyReader(KeyCommands& keys) : keys_(keys) {
  Handle(SIGTSTP, StopAndContinue, SA_RESTART);
  for (const int signal : kDeadly) Handle(signal, PutBackAndDie, static_cast<int>(SA_RESETHAND));
  thread_ = std::thread([this] { Read(); });
}

KeyReader::~KeyReader() {
  ends_ = true;
  thread_.join();
  HandleNoMore(SIGTSTP);
  for (const int signal : kDeadly) HandleNoMore(signal);
  PutTerminalBack();
}

// The input itself is read, without the buffer of the standard streams: a byte that waits there
// would not wake the thread.
void KeyReader::Read() {
  KeyDecoder decoder;
  while (!ends_) {
    if (!IsInForeground()) {
      ::poll(nullptr, 0, kLookAgainMs);
      continue;
    }
    TakeSingleKeys();
    pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    std::optional<Key> key;
    if (::poll(&input, 1, kLookAgainMs) <= 0) {
      key = decoder.Idle();
    } else if (IsInForeground()) {
      char byte = 0;
      if (::read(STDIN_FILENO, &byte, 1) <= 0) return;
      key = decoder.Take(byte);
    }
    if (key) keys_.Take(*key);
  }
}

}  // namespace tarvex
