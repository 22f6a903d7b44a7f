// A closed library bound by name: loaded on first use and kept, its entry points looked up once
// each and kept. A load that failed is remembered and not tried again; it is reported once, and so
// is an entry that the library lacks.
//
// One object is one library and is shared by everything that uses it. Calls are safe from
// any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "coordsys/message_box.h"
#include "platform/run_time_library.h"

namespace tarvex {

class ClosedLibrary {
 public:
  /// `messages` may be null; both references outlive the object.
  ClosedLibrary(std::string name, RunTimeLibraries& libraries, MessageBox* messages = nullptr);

  /// The entry point as a function of type F; null when the library or the entry is missing.
  template <typename F>
  F* Entry(const char* entryName) {
    return reinterpret_cast<F*>(Address(entryName));
  }

  /// The same of a library that is loaded; null, and no load, for one that is not.
  template <typename F>
  F* EntryIfLoaded(const char* entryName) {
    return IsLoaded() ? Entry<F>(entryName) : nullptr;
  }

  /// Unloads the library and forgets its entry points: the next use loads it afresh. A remembered
  /// failure stays remembered. No call into the library may be running.
  void Close();

  /// Counts the times that the library was closed: an address is good as long as it is the same.
  std::uint64_t generation() const { return generation_.load(std::memory_order_acquire); }

  /// Who hears of a load that fails from here on.
  void SetMessages(MessageBox* messages);

  const std::string& name() const { return name_; }

 private:
  void* Address(const char* entryName);
  bool IsLoaded();
  bool Loaded();

  std::mutex mutex_;
  std::atomic<std::uint64_t> generation_ = 0;
  std::string name_;
  RunTimeLibraries& libraries_;
  MessageBox* messages_;
  bool failed_ = false;
  std::unique_ptr<RunTimeLibrary> library_;
  std::map<std::string, void*> entries_;
};

/// The "CoordSys.dll" of the running system, shared by all calculators.
std::shared_ptr<ClosedLibrary> SystemCoordSysLibrary();

}  // namespace tarvex
