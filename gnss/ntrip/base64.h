// Standard base64 (RFC 4648, with '=' padding).
#pragma once

#include <string>
#include <string_view>

namespace tarvex {

std::string Base64Of(std::string_view bytes);

}  // namespace tarvex
