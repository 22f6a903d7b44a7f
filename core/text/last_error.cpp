#include "core/text/last_error.h"

#include <utility>

namespace tarvex {
namespace {

constexpr std::size_t kKeptErrors = 16;

}  // namespace

int LastErrorRecord::Set(int code, std::vector<std::string> arguments) {
  if (whole_ != nullptr) whole_->Set(code, arguments);
  const std::lock_guard lock(mutex_);
  if (errors_.size() == kKeptErrors) errors_.erase(errors_.begin());
  errors_.push_back({code, std::move(arguments)});
  return code;
}

LastError LastErrorRecord::Get() const {
  const std::lock_guard lock(mutex_);
  return errors_.empty() ? LastError{} : errors_.back();
}

std::vector<LastError> LastErrorRecord::History() const {
  const std::lock_guard lock(mutex_);
  return errors_;
}

void LastErrorRecord::Clear() {
  const std::lock_guard lock(mutex_);
  errors_.clear();
}

LastErrorRecord& SystemLastError() {
  static LastErrorRecord record;
  return record;
}

}  // namespace tarvex
