#include "app/workflow/receiver_tap.h"

namespace tarvex {

bool ReceiverTap::StartLog(const std::string& path) {
  const FileStatus status = program_.files.Open(path, FileAccess::CreateNew, log_);
  if (status.ok()) return true;
  (void)program_.Fail("The stream log " + path + " cannot be created: " + status.Text() + ".");
  return false;
}

void ReceiverTap::OnLine(std::string_view line) {
  constexpr std::size_t kLineEnd = 2;
  ++lines_;
  bytes_ += line.size() + kLineEnd;
  gga_.OnLine(line);
  sky_.OnLine(line, program_.clock.SteadyMilliseconds());
  if (!log_ || log_failed_) return;
  const std::string record = std::string(line) + "\r\n";
  const FileStatus status = log_->WriteAt(log_size_, record);
  log_size_ += record.size();
  if (status.ok()) return;
  log_failed_ = true;
  (void)program_.Fail("The stream log cannot be written any more: " + status.Text() + ".");
}

}  // namespace tarvex
