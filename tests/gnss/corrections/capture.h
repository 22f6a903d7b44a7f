// Corrections for tests: recorded streams, and one frame that is known byte by byte.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/file.h"

namespace tarvex {

inline std::string Capture(const std::string& name) {
  std::string bytes;
  EXPECT_TRUE(
      ReadWholeFile(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/ntrip/" + name, 1 << 20, bytes)
          .ok());
  return bytes;
}

// The station message of the RTCM 3 standard's example.
inline const std::string kStationFrame(
    "\xD3\x00\x13\x3E\xD7\xD3\x02\x02\x98\x0E\xDE\xEF\x34\xB4\xBD\x62\xAC\x09\x41\x98\x6F\x33"
    "\x36\x0B\x98",
    25);

}  // namespace tarvex
