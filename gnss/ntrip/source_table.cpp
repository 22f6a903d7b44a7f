#include "gnss/ntrip/source_table.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "core/text/printable.h"
#include "gnss/ntrip/http_reply.h"

namespace tarvex {
namespace {

constexpr std::int64_t kAnswerLimitMs = 60000;
constexpr std::int64_t kTableLimitMs = 600000;
constexpr std::size_t kLargestReply = 65536;  // header and first lines
constexpr std::uint64_t kLargestTable = 32U << 20;
constexpr int kTableProgress = 10;
constexpr int kProgressDone = 90;
constexpr std::string_view kEnd = "ENDSOURCETABLE";
constexpr std::size_t kLongestAnswer = 100;
constexpr std::string_view kTlsAlert = "\x15\x03";

bool Holds(std::string_view text, std::string_view mark) {
  return text.find(mark) != std::string_view::npos;
}

// What a caster says instead of a table, in its own words: an HTTP status, a line "ERROR ...".
PortError RefusalOf(std::string_view reply, std::string& answer) {
  HttpHead head;
  std::string_view rest = reply;
  head.Feed(rest);
  answer =
      head.status() != 0
          ? head.StatusLine()
          : PrintableLine(reply.substr(0, std::min(reply.find_first_of("\r\n"), kLongestAnswer)));
  if (reply.starts_with("ERROR")) return PortError::CasterRefused;
  const PortError refusal = HttpRefusal(head);
  return refusal == PortError::MountpointUnknown ? PortError::CasterRefused : refusal;
}

// Where the table begins: the first "STR", or the first "CAS" when there is none. A table of no
// streams has its end alone.
std::size_t TableBegin(std::string_view text) {
  for (const std::string_view begin : {std::string_view("STR"), std::string_view("CAS"), kEnd}) {
    if (Holds(text, begin)) return text.find(begin);
  }
  return std::string_view::npos;
}

// What a caster sends, without the head of an HTTP answer and the sizes of its chunks.
class TableBody {
 public:
  std::string Take(std::string_view received) {
    if (head_.state() == HttpHead::State::Gathering) {
      held_ += received;
      head_.Feed(received);
      if (head_.state() == HttpHead::State::Gathering) return {};
      if (head_.state() == HttpHead::State::NotHttp) return std::exchange(held_, {});
      chunked_ = head_.Holds("Transfer-Encoding", "chunked");
    }
    std::string data;
    if (chunked_) {
      chunks_.Feed(received, data);
    } else {
      data = received;
    }
    return data;
  }
  /// Nothing follows the last chunk.
  bool ended() const { return chunked_ && chunks_.ended(); }

 private:
  HttpHead head_;
  ChunkedBody chunks_;
  std::string held_;
  bool chunked_ = false;
};

// The table on its way into its file. What comes before the table is dropped, also when it fills
// receives of its own; the end is found also where two receives meet.
class TableFile {
 public:
  explicit TableFile(std::unique_ptr<File> file) : file_(std::move(file)) {}

  PortError Append(std::string_view received) {
    if (!begun_) {
      before_ += received;
      const std::size_t begin = TableBegin(before_);
      if (begin == std::string::npos) {
        if (before_.size() > kLargestReply) return PortError::TableTooLarge;
        return PortError::None;
      }
      begun_ = true;
      const std::string first = before_.substr(begin);
      before_.clear();
      return Write(first);
    }
    return Write(received);
  }

  bool begun() const { return begun_; }
  bool complete() const { return complete_; }

 private:
  PortError Write(std::string_view bytes) {
    if (size_ + bytes.size() > kLargestTable) return PortError::TableTooLarge;
    if (!file_->WriteAt(size_, bytes).ok()) return PortError::FileNotCreated;
    size_ += bytes.size();
    tail_ += bytes;
    complete_ = Holds(tail_, kEnd);
    if (tail_.size() > kEnd.size()) tail_.erase(0, tail_.size() - kEnd.size());
    return PortError::None;
  }

  std::unique_ptr<File> file_;
  std::uint64_t size_ = 0;
  std::string before_;
  std::string tail_;
  bool begun_ = false;
  bool complete_ = false;
};

}  // namespace

SourceTableFetch::SourceTableFetch(NtripConnection& connection,
                                   const NtripSurroundings& surroundings, std::uint32_t timeoutMs)
    : connection_(connection),
      surroundings_(surroundings),
      timeoutMs_(timeoutMs),
      sinceMs_(surroundings.clock.SteadyMilliseconds()) {}

PortError SourceTableFetch::Run(const std::string& fileName, NtripProgress& progress) {
  std::string table;
  if (const PortError error = ReceiveText(connection_, table, 2 * timeoutMs_);
      error != PortError::None) {
    return error;
  }
  if (const PortError error = Await(table, progress); error != PortError::None) return error;
  return Store(std::move(table), fileName, progress);
}

PortError SourceTableFetch::Fail(PortError error) {
  return Report(surroundings_.errors, error);
}

std::int64_t SourceTableFetch::ElapsedMs() const {
  return surroundings_.clock.SteadyMilliseconds() - sinceMs_;
}

PortError SourceTableFetch::Await(std::string& table, NtripProgress& progress) {
  while (!Holds(table, "Content-Length:") && !Holds(table, "STR;") && !Holds(table, kEnd)) {
    if (ElapsedMs() > kAnswerLimitMs) return Fail(PortError::NoAnswer);
    const int elapsedS = static_cast<int>(ElapsedMs() / 1000);
    if (progress.Progress(elapsedS + kTableProgress) != 0) return Fail(PortError::Cancelled);
    if (Holds(table, "401 Unauthorized")) return Fail(PortError::NotAuthorized);
    if (Holds(table, "DISCONNECT")) return Fail(PortError::Disconnected);
    if (table.starts_with(kTlsAlert)) return Fail(PortError::CasterSpeaksTls);
    if (table.size() > kLargestReply) return Fail(PortError::TableTooLarge);
    std::string received;
    const PortError error = ReceiveText(connection_, received, timeoutMs_);
    if (error == PortError::Cancelled) return Fail(error);
    if (error != PortError::None && error != PortError::FewerBytesRead) {
      const PortError refusal = Refusal(table);
      return refusal == PortError::None ? error : refusal;
    }
    table += received;
  }
  return Refusal(table);
}

PortError SourceTableFetch::Refusal(std::string_view reply) {
  std::string answer;
  const PortError refusal = RefusalOf(reply, answer);
  if (refusal == PortError::CasterRefused) return Report(surroundings_.errors, refusal, {answer});
  return refusal == PortError::None ? refusal : Fail(refusal);
}

PortError SourceTableFetch::Store(std::string table, const std::string& fileName,
                                  NtripProgress& progress) {
  std::unique_ptr<File> opened;
  if (!surroundings_.files.Open(fileName, FileAccess::CreateOrTruncate, opened).ok()) {
    return Fail(PortError::FileNotCreated);
  }
  TableFile file(std::move(opened));
  TableBody body;
  for (int n = kTableProgress;; ++n) {
    if (const PortError error = file.Append(body.Take(table)); error != PortError::None) {
      return Fail(error);
    }
    if (file.complete() || body.ended()) break;
    if (progress.Progress(n) != 0) return Fail(PortError::Cancelled);
    const std::int64_t limitMs = file.begun() ? kTableLimitMs : kAnswerLimitMs;
    if (ElapsedMs() > limitMs) return Fail(PortError::NoAnswer);
    const PortError error = ReceiveText(connection_, table, timeoutMs_);
    if (error == PortError::Cancelled) return Fail(error);
    if (error != PortError::None) break;
  }
  return progress.Progress(kProgressDone) != 0 ? Fail(PortError::Cancelled) : PortError::None;
}

}  // namespace tarvex
