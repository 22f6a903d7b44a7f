// Closed libraries that exist only in a test, and a message box that keeps what it was shown.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "coordsys/message_box.h"
#include "platform/run_time_library.h"

namespace tarvex {

struct ScriptedLibraries : RunTimeLibraries {
  bool loads = true;
  int loaded = 0;                        ///< how often a library was asked for
  std::map<std::string, void*> entries;  ///< of every library
  std::vector<std::string> asked;        ///< names of libraries and entries, in order

  struct Library : RunTimeLibrary {
    ScriptedLibraries& all;
    explicit Library(ScriptedLibraries& libraries) : all(libraries) {}
    void* Find(const char* entryName) override {
      all.asked.emplace_back(entryName);
      const auto at = all.entries.find(entryName);
      return at == all.entries.end() ? nullptr : at->second;
    }
  };

  std::unique_ptr<RunTimeLibrary> Load(const std::string& name, std::string& why) override {
    ++loaded;
    asked.push_back(name);
    why = "not here";
    return loads ? std::make_unique<Library>(*this) : nullptr;
  }
};

struct CountedMessages : MessageBox {
  std::vector<std::string> texts;
  void Show(std::string_view, std::string_view text) override { texts.emplace_back(text); }
};

}  // namespace tarvex
