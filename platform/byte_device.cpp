#include "platform/byte_device.h"

#include <cerrno>
#include <system_error>

namespace tarvex {

bool DeviceStatus::cancelled() const {
  return code == ECANCELED;
}

std::string DeviceStatus::Text() const {
  if (ended()) return "end of data";
  if (code == kHungUp) return "the far end closed the connection";
  if (code == ENOTTY) return "this is not a serial line";
  if (code == kRefused) return "the far end is not what it should be";
  if (code == kUnknownHost) return "no host of this name was found";
  return std::system_category().message(code);
}

}  // namespace tarvex
