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

/// The satellites of one system.
struct SystemCount {
  std::string system;  ///< talker
  int in_use = 0;
  int in_view = 0;
};

class SkyView {
 public:
  /// Leaves out all systems but these (SatelliteSystem); 0: none is left out.
  void ShowOnly(int systems) { systems_ = systems; }

  /// Takes a GSV or GSA sentence; leaves out everything else. `now_ms` is the steady clock.
  void OnLine(std::string_view line, std::int64_t now_ms);

  /// What was told in the last few seconds, by system and number.
  std::vector<SatelliteInView> InView(std::int64_t now_ms) const;

  /// How many of each system are in view and in use, by system.
  std::vector<SystemCount> Counts(std::int64_t now_ms) const;

 private:
  using Satellite = std::pair<std::string, int>;  // talker and number

  void TakeGsv(std::string_view line, std::int64_t now_ms);
  void TakeGsa(std::string_view line, std::int64_t now_ms);
  bool Shows(std::string_view system) const;

  struct Seen {
    SatelliteInView satellite;
    std::int64_t at_ms = 0;
  };
  std::map<Satellite, Seen> seen_;
  std::map<Satellite, std::int64_t> used_;  // and when that was told
  int systems_ = 0;
};

}  // namespace tarvex
