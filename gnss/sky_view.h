// The satellites in the sky as the receiver tells them (GSV of any talker): where they stand and
// how well they are heard.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvex {

struct SatelliteInView {
  std::string system;  ///< talker: "GP", "GL", "GA", "GB", ...
  int prn = 0;
  int elevation_deg = 0;
  int azimuth_deg = 0;
  int snr = -1;  ///< dB-Hz; -1 when it is not tracked
};

class SkyView {
 public:
  /// Takes a GSV sentence; leaves out everything else. `now_ms` is the steady clock.
  void OnLine(std::string_view line, std::int64_t now_ms);

  /// What was told in the last few seconds, by system and number.
  std::vector<SatelliteInView> InView(std::int64_t now_ms) const;

 private:
  struct Seen {
    SatelliteInView satellite;
    std::int64_t at_ms = 0;
  };
  std::map<std::pair<std::string, int>, Seen> seen_;
};

}  // namespace tarvex
