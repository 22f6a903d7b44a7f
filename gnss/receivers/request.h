// Asking a receiver for something: a command out, lines back within a time.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "gnss/receivers/gnss_connection.h"

namespace tarvex {

/// Sends a command with CR LF behind it; false when the port failed.
[[nodiscard]] bool SendCommand(GnssConnection& connection, std::string_view command);

enum class [[nodiscard]] ReplyStatus { Found, TimedOut, PortFailed };

/// Reads lines until one holds `wanted`; `reply` is that line from `wanted` on, and stands in
/// `buffer`. Other lines (prompts, acknowledgements, data that streams by) are left out.
ReplyStatus AwaitReply(GnssConnection& connection, std::string_view wanted, int timeoutMs,
                       std::span<char> buffer, std::string_view& reply);

/// Reads one line and leaves it out: the receiver's answer to a setting command.
void TakeAnswer(GnssConnection& connection);

}  // namespace tarvex
