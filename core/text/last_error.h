// The system-wide last-error record: ports, drivers and the NTRIP client report a failure by
// storing an error number, with optional arguments, and returning the same number; 0 is success.
//
// An argument is shown to people and may reach a log: it never holds a password.
#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace tarvex {

struct LastError {
  int code = 0;
  std::vector<std::string> arguments;

  bool operator==(const LastError&) const = default;
};

class LastErrorRecord {
 public:
  LastErrorRecord() = default;
  /// A record of one operation's own errors; each of them reaches `whole` as well, which lives
  /// longer.
  explicit LastErrorRecord(LastErrorRecord& whole) : whole_(&whole) {}
  LastErrorRecord(const LastErrorRecord&) = delete;
  LastErrorRecord& operator=(const LastErrorRecord&) = delete;

  /// Stores the error and returns its number, so that a caller can `return record.Set(7);`.
  int Set(int code, std::vector<std::string> arguments = {});
  LastError Get() const;
  /// Every error stored since the last Clear, oldest first (an open failure records 29 and then
  /// 24).
  std::vector<LastError> History() const;
  void Clear();

 private:
  LastErrorRecord* const whole_ = nullptr;
  mutable std::mutex mutex_;
  std::vector<LastError> errors_;
};

/// The one record of the running system.
LastErrorRecord& SystemLastError();

}  // namespace tarvex
