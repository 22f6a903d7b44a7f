#include "gnss/ntrip/reply.h"

#include <algorithm>

#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::size_t kCarriedOver = 31;  // one less than the longest mark could be
constexpr std::size_t kLongestHeaderLine = 512;
constexpr std::size_t kLongestHeaderName = 40;

bool IsPrintable(char c) {
  return c >= ' ' && c <= '~';
}

bool IsHeaderNameCharacter(char c) {
  return IsDigit(c) || c == '-' || (LowerCase(c) >= 'a' && LowerCase(c) <= 'z');
}

}  // namespace

void ReplyWindow::Take(std::string_view received) {
  if (bytes_.size() > kCarriedOver) bytes_.erase(0, bytes_.size() - kCarriedOver);
  bytes_ += received;
}

std::string_view ReplyWindow::Behind(std::string_view mark) const {
  const std::size_t at = bytes_.find(mark);
  if (at == std::string::npos) return {};
  return std::string_view(bytes_).substr(at + mark.size());
}

// "Name: value" and a line end.
bool StreamStart::LineIsHeader() const {
  const std::size_t colon = line_.find(':');
  if (colon == std::string::npos || colon == 0) return false;
  return std::all_of(line_.begin(), line_.begin() + static_cast<std::ptrdiff_t>(colon),
                     IsHeaderNameCharacter);
}

// What has come of a line may still become a header line or the blank one: a short name, then a
// colon and printable text. Corrections of any format soon hold something else.
bool StreamStart::CouldBecomeHeader() const {
  const char last = line_.back();
  if (last == '\r') return line_.size() < kLongestHeaderLine;
  if (first_ || line_.find(':') != std::string::npos) {
    return (IsPrintable(last) || last == '\t') && line_.size() < kLongestHeaderLine;
  }
  return IsHeaderNameCharacter(last) && line_.size() <= kLongestHeaderName;
}

// `line_` holds what has come of a line; its last character was just added.
void StreamStart::Decide(std::string& stream) {
  const char last = line_.back();
  if (last == '\n') {
    const bool blank = line_ == "\n" || line_ == "\r\n";
    if (first_) {
      first_ = false;
    } else if (blank) {
      done_ = true;
    } else if (!LineIsHeader()) {
      stream += line_;
      done_ = true;
    }
    line_.clear();
    return;
  }
  if (CouldBecomeHeader()) return;
  stream += line_;
  line_.clear();
  done_ = true;
}

void StreamStart::Feed(std::string_view received, std::string& stream) {
  while (!done_ && !received.empty()) {
    line_ += received.front();
    received.remove_prefix(1);
    Decide(stream);
  }
  stream += received;
}

}  // namespace tarvex
