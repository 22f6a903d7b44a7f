// The satellites in the sky as the receiver reports them (GSV of any talker): where they are and
// how well they are heard.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvex {

/// The satellite systems of nmea_sat.
enum SatelliteSystem : int {
  kSatelliteGps = 1,
  kSatelliteGlonass = 2,
  kSatelliteGalileo = 4,
  kSatelliteBeiDou = 8,
  kSatelliteQzss = 16,
  kSatelliteNavIc = 32,
};

struct SatelliteInView {
  std::string system;  ///< talker: "GP", "GL", "GA", "GB", ...
  int prn = 0;
  int elevationDeg = 0;
  int azimuthDeg = 0;
  int snr = -1;  ///< dB-Hz; -1 when it is not tracked
};

/// The satellites of one system.
struct SystemCount {
  std::string system;  ///< talker
  int inUse = 0;
  int inView = 0;
};

class SkyView {
 public:
  /// Leaves out all systems but these (SatelliteSystem); 0: none is left out.
  void ShowOnly(int systems) { systems_ = systems; }

  /// Takes a GSV or GSA sentence; leaves out everything else. `nowMs` is the steady clock.
  void OnLine(std::string_view line, std::int64_t nowMs);

  /// What was reported in the last few seconds, by system and number.
  std::vector<SatelliteInView> InView(std::int64_t nowMs) const;

  /// How many of each system are in view and in use, by system.
  std::vector<SystemCount> Counts(std::int64_t nowMs) const;

 private:
  using Satellite = std::pair<std::string, int>;  // talker and number

  void TakeGsv(std::string_view line, std::int64_t nowMs);
  void TakeGsa(std::string_view line, std::int64_t nowMs);
  bool Shows(std::string_view system) const;

  struct Seen {
    SatelliteInView satellite;
    std::int64_t atMs = 0;
  };
  std::map<Satellite, Seen> seen_;
  std::map<Satellite, std::int64_t> used_;  // and when that was reported
  int systems_ = 0;
};

}  // namespace tarvex
