#include <dlfcn.h>
#include <unistd.h>

#include <mutex>
#include <vector>

#include "platform/run_time_library.h"

namespace tarvex {
namespace {

class PosixLibrary final : public RunTimeLibrary {
 public:
  explicit PosixLibrary(void* handle) : handle_(handle) {}
  ~PosixLibrary() override { dlclose(handle_); }
  PosixLibrary(const PosixLibrary&) = delete;
  PosixLibrary& operator=(const PosixLibrary&) = delete;

  void* Find(const char* entryName) override { return dlsym(handle_, entryName); }

 private:
  void* handle_;
};

std::string ProgramFolder() {
  char path[4096];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  const std::string program(path, length > 0 ? static_cast<std::size_t>(length) : 0);
  return program.substr(0, program.rfind('/') + 1);
}

class PosixLibraries final : public RunTimeLibraries {
 public:
  std::unique_ptr<RunTimeLibrary> Load(const std::string& name, std::string& why) override {
    const std::string stem = name.substr(0, name.rfind('.'));
    for (const std::string& folder : Folders()) {
      for (const char* prefix : {"", "lib"}) {
        std::string path = folder;
        path.append(prefix).append(stem).append(".so");
        if (access(path.c_str(), F_OK) != 0) continue;
        if (void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
          return std::make_unique<PosixLibrary>(handle);
        }
        why = dlerror();
        return nullptr;
      }
    }
    why = name + ": no such library beside the program";
    return nullptr;
  }

  void Add(const std::string& folder) {
    const std::lock_guard lock(mutex_);
    added_.push_back(folder.empty() || folder.back() == '/' ? folder : folder + '/');
  }

 private:
  std::vector<std::string> Folders() {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> folders = added_;
    const std::string own = ProgramFolder();
    folders.push_back(own);
    folders.push_back(own + "modules/");
    folders.push_back(own + "../lib/tarvex/");
    return folders;
  }

  std::mutex mutex_;
  std::vector<std::string> added_;
};

PosixLibraries& Libraries() {
  static PosixLibraries libraries;
  return libraries;
}

}  // namespace

RunTimeLibraries& SystemRunTimeLibraries() {
  return Libraries();
}

void AddRunTimeLibraryFolder(const std::string& folder) {
  Libraries().Add(folder);
}

}  // namespace tarvex
