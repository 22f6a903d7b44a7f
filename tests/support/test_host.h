// A job's surroundings for tests: files in memory, a clock that stands still, answers given in
// advance.
#pragma once

#include <string>
#include <vector>

#include "core/observations/job_unit.h"
#include "tests/support/manual_clock.h"
#include "tests/support/memory_files.h"

namespace tarvex {

class TestHost final : public JobHost {
 public:
  TestHost() {
    manualClock.now = {.year = 2008, .month = 12, .day = 5, .hour = 14, .minute = 3, .second = 9};
  }

  FileSystem& files() override { return memory; }
  Clock& clock() override { return manualClock; }
  ExistingPointAnswer AskExistingPoint(const std::string& id, bool exists) override {
    asked.push_back(id + (exists ? " exists" : " is free"));
    return answer;
  }
  void ShowMessage(const std::string& text) override { messages.push_back(text); }
  void ShowWaitCursor(bool shown) override { waitCursor += shown ? "on " : "off "; }

  MemoryFiles memory;
  ManualClock manualClock;
  ExistingPointAnswer answer;
  std::vector<std::string> asked;
  std::vector<std::string> messages;
  std::string waitCursor;
};

inline constexpr const char* kJobPath = "/jobs/site.crd";

inline Job MakeJob(TestHost& host, bool alphanumeric) {
  Job job(host);
  job.path = kJobPath;
  job.options.alphanumericNewFiles = alphanumeric;
  return job;
}

/// A unit of one edit of the notes.
inline bool EditNote(Job& job, std::string_view id, const NoteEdit& edit) {
  const auto unit = JobUnit::Begin(job);
  if (!unit) return false;
  unit->EditNote(id, edit);
  return unit->Commit() == ChangeResult::Done;
}

inline bool WriteNote(Job& job, const PointNote& note) {
  return EditNote(job, note.pointId, {.note = note});
}

}  // namespace tarvex
