// Debian's stream tool beside our own correction session: the program, run on its own process.
#pragma once

#include <string>
#include <vector>

namespace tarvex {

/// Whether the stream tool is installed.
bool StreamToolInstalled();

/// A program that runs until it is ended.
class PeerProcess {
 public:
  explicit PeerProcess(std::vector<std::string> words);
  PeerProcess(const PeerProcess&) = delete;
  PeerProcess& operator=(const PeerProcess&) = delete;
  ~PeerProcess() { (void)End(); }

  /// Ends it; the processor seconds that it took, in user and system mode.
  double End();
  /// Waits until it ends by itself.
  void Wait();

 private:
  int process_ = -1;
};

/// A port of this machine that was free a moment ago.
int FreePort();

}  // namespace tarvex
