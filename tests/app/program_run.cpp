#include "tests/app/program_run.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace tarvex {
namespace {

std::vector<std::string> Words(const std::string& line) {
  std::vector<std::string> words;
  bool quoted = false;
  bool open = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
      if (!open) words.emplace_back();
      open = true;
    } else if (c == ' ' && !quoted) {
      open = false;
    } else {
      if (!open) words.emplace_back();
      open = true;
      words.back() += c;
    }
  }
  return words;
}

void Redirect(const std::string& path, int flags, int descriptor) {
  const int file = ::open(path.c_str(), flags, 0600);
  ::dup2(file, descriptor);
  ::close(file);
}

}  // namespace

pid_t ProgramFolder::Start(const std::string& line, const std::string& input) {
  Write("IN", input);
  Write("OUT", "");
  Write("ERR", "");
  std::vector<std::string> words = Words(line);
  words.insert(words.begin(), program_);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const pid_t process = ::fork();
  if (process != 0) return process;
  ::setenv("TARVEX_DATA", Path("data").c_str(), 1);
  ::setenv("XDG_CONFIG_HOME", Path("config").c_str(), 1);
  if (::chdir(folder_.path().c_str()) != 0) ::_exit(127);
  Redirect("IN", O_RDONLY, STDIN_FILENO);
  Redirect("OUT", O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
  Redirect("ERR", O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
  ::execv(program_.c_str(), arguments.data());
  ::_exit(127);
}

ProgramResult ProgramFolder::Finish(pid_t process) {
  int status = 0;
  ::waitpid(process, &status, 0);
  return {.exitCode = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status),
          .output = Read("OUT"),
          .errors = Read("ERR")};
}

ProgramResult ProgramFolder::Run(const std::string& line, const std::string& input) {
  return Finish(Start(line, input));
}

std::string ProgramFolder::Read(const std::string& name) const {
  std::ifstream file(Path(name), std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void ProgramFolder::Write(const std::string& name, const std::string& bytes) const {
  std::ofstream(Path(name), std::ios::binary) << bytes;
}

}  // namespace tarvex
