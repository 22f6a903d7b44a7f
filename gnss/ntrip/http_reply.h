// Replies of casters that speak HTTP (version 2 casters, and gateways before them): the head with
// its status and headers, and a body that comes in chunks.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "gnss/port/port_error.h"

namespace tarvex {

/// The head of a reply, gathered from receives of any size.
class HttpHead {
 public:
  enum class State {
    Gathering,
    Complete,  ///< its blank line has come
    NotHttp,   ///< the reply is something else, or its head has no end
  };

  /// Takes what belongs to the head from the front of `received`; of a reply that is not HTTP
  /// nothing.
  void Feed(std::string_view& received);
  State state() const { return state_; }
  /// 200, 404 ...; 0 until the status line has come so far.
  int status() const;
  /// "HTTP/1.1 404 Not Found", without what a terminal should not see.
  std::string StatusLine() const;
  /// Whether a header of this name holds the text; letter case is ignored.
  bool Holds(std::string_view name, std::string_view text) const;

 private:
  std::string text_;
  State state_ = State::Gathering;
};

/// A body with "Transfer-Encoding: chunked".
class ChunkedBody {
 public:
  /// Appends to `data` what of `received` is data; sizes and line ends are left out.
  void Feed(std::string_view received, std::string& data);
  /// The chunk of no bytes has come, or something that is no chunk: nothing follows any more.
  bool ended() const { return state_ == State::Ended; }

 private:
  enum class State { Size, Data, DataEnd, Ended };

  std::string_view TakeLine(std::string_view& received);

  State state_ = State::Size;
  std::string line_;
  std::size_t left_ = 0;  // of this chunk
};

inline constexpr int kHttpOk = 200;

/// The result for an HTTP status other than 200: 401 and 403 NotAuthorized, 404 MountpointUnknown,
/// any other CasterRefused.
PortError HttpRefusal(const HttpHead& head);

}  // namespace tarvex
