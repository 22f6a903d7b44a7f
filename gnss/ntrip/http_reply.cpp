#include "gnss/ntrip/http_reply.h"

#include <algorithm>
#include <charconv>

#include "core/text/printable.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kProtocol = "HTTP/1.";
constexpr std::size_t kStatusAt = 9;  // behind "HTTP/1.1 "
constexpr std::size_t kStatusDigits = 3;
constexpr std::size_t kLongestHead = 16384;
constexpr std::size_t kLongestSizeLine = 1024;
constexpr std::size_t kLongestStatusLine = 100;
constexpr std::size_t kLargestChunk = 1U << 24;

bool EndsHead(std::string_view text) {
  return text.ends_with("\n\r\n") || text.ends_with("\n\n");
}

bool HoldsIgnoringCase(std::string_view text, std::string_view part) {
  return std::search(text.begin(), text.end(), part.begin(), part.end(),
                     [](char a, char b) { return LowerCase(a) == LowerCase(b); }) != text.end();
}

}  // namespace

void HttpHead::Feed(std::string_view& received) {
  while (state_ == State::Gathering && !received.empty()) {
    text_ += received.front();
    const std::size_t compared = std::min(text_.size(), kProtocol.size());
    if (text_.compare(0, compared, kProtocol, 0, compared) != 0 || text_.size() > kLongestHead) {
      state_ = State::NotHttp;
      return;
    }
    received.remove_prefix(1);
    if (EndsHead(text_)) state_ = State::Complete;
  }
}

int HttpHead::status() const {
  if (state_ == State::NotHttp || text_.size() < kStatusAt + kStatusDigits) return 0;
  int status = 0;
  const char* const digits = text_.data() + kStatusAt;
  const auto [end, error] = std::from_chars(digits, digits + kStatusDigits, status);
  return error == std::errc{} && end == digits + kStatusDigits ? status : 0;
}

std::string HttpHead::StatusLine() const {
  return PrintableLine(
      std::string_view(text_).substr(0, std::min(text_.find_first_of("\r\n"), kLongestStatusLine)));
}

bool HttpHead::Holds(std::string_view name, std::string_view text) const {
  std::string_view rest = text_;
  while (const auto line = tarvex::TakeLine(rest)) {
    const std::size_t colon = line->find(':');
    if (colon == std::string_view::npos || !EqualsIgnoringCase(line->substr(0, colon), name)) {
      continue;
    }
    if (HoldsIgnoringCase(line->substr(colon + 1), text)) return true;
  }
  return false;
}

// A whole line with its end, or nothing while it has not come; a line without end ends the body.
std::string_view ChunkedBody::TakeLine(std::string_view& received) {
  const std::size_t end = std::min(received.find('\n'), received.size() - 1) + 1;
  line_ += received.substr(0, end);
  received.remove_prefix(end);
  if (line_.ends_with('\n')) return line_;
  if (line_.size() > kLongestSizeLine) state_ = State::Ended;
  return {};
}

void ChunkedBody::Feed(std::string_view received, std::string& data) {
  while (!received.empty() && !ended()) {
    if (state_ == State::Data) {
      const std::string_view piece = received.substr(0, left_);
      data += piece;
      left_ -= piece.size();
      received.remove_prefix(piece.size());
      if (left_ == 0) state_ = State::DataEnd;
      continue;
    }
    const std::string_view line = TakeLine(received);
    if (line.empty()) continue;
    if (state_ == State::DataEnd) {
      const bool blank = line == "\n" || line == "\r\n";
      state_ = blank ? State::Size : State::Ended;
    } else {
      const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), left_, 16);
      const bool good = error == std::errc{} && left_ > 0 && left_ <= kLargestChunk &&
                        (*end == ';' || *end == '\r' || *end == '\n' || *end == ' ');
      state_ = good ? State::Data : State::Ended;
    }
    line_.clear();
  }
}

PortError HttpRefusal(const HttpHead& head) {
  switch (head.status()) {
    case 0:
    case kHttpOk:
      return PortError::None;
    case 401:
    case 403:
      return PortError::NotAuthorized;
    case 404:
      return PortError::MountpointUnknown;
    default:
      return PortError::CasterRefused;
  }
}

}  // namespace tarvex
