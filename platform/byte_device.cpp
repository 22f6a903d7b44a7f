#include "platform/byte_device.h"

#include <system_error>

namespace tarvex {

std::string DeviceStatus::Text() const {
  if (ended()) return "end of data";
  if (code == kUnknownHost) return "no host of this name was found";
  return std::system_category().message(code);
}

}  // namespace tarvex
