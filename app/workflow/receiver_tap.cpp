#include "app/workflow/receiver_tap.h"

#include "core/text/string_table.h"
#include "gnss/nmea/sentence_line.h"

namespace tarvex {
namespace {

constexpr int kTextNotCreated = 3460;
constexpr int kTextNotWritten = 3461;

}  // namespace

bool ReceiverTap::StartLog(const std::string& path) {
  logPath_ = path;
  const FileStatus status = files_.Open(path, FileAccess::CreateNew, log_);
  if (!status.ok()) logProblem_ = Strings().Text(kTextNotCreated, {path, status.Text()});
  return status.ok();
}

void ReceiverTap::OnLine(std::string_view line) {
  constexpr std::string_view kLineEnd = "\r\n";
  ++lines_;
  bytes_ += line.size() + kLineEnd.size();
  const std::string_view sentence = SentenceIn(line);
  gga_.OnLine(sentence);
  sky_.OnLine(sentence, clock_.SteadyMilliseconds());
  if (!log_ || !logProblem_.empty()) return;
  std::string record(line);
  record += kLineEnd;
  const FileStatus status = log_->WriteAt(logSize_, record);
  logSize_ += record.size();
  if (!status.ok()) logProblem_ = Strings().Text(kTextNotWritten, {logPath_, status.Text()});
}

}  // namespace tarvex
