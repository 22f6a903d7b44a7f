// Starts another program that is neither heard nor fed: the peers of tests and benchmarks.
#pragma once

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace tarvex {

/// The program's process, looked for along PATH; it ends with 127 when there is no such program.
inline pid_t StartQuietly(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const pid_t process = ::fork();
  if (process != 0) return process;
  const int nowhere = ::open("/dev/null", O_RDWR);
  for (int descriptor = 0; descriptor < 3; ++descriptor) ::dup2(nowhere, descriptor);
  ::execvp(arguments[0], arguments.data());
  ::_exit(127);
}

}  // namespace tarvex
