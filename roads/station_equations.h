// Station equations: places where the alignment's numbering jumps. "12+00.00 BK = 13+00.00 AH" is
// one place with two names: the back station, coming from behind, and the ahead station, going on.
//
// Stations inside the system are internal: start station plus distance. Displayed stations add the
// shift of their region; region 1 lies before the first equation. Everything is in the job's unit.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/units/station.h"

namespace tarvex {

struct StationEquation {
  double back = 0.0;
  double ahead = 0.0;

  bool operator==(const StationEquation&) const = default;
};

/// A file with more equations keeps the first ones.
inline constexpr std::size_t kMostStationEquations = 1000;

/// The "EQ" records of a centerline text in file order, back station first. Records with a station
/// that is missing or no number are passed over.
std::vector<StationEquation> ReadStationEquations(std::string_view centerlineText);

/// Each equation with its two stations changed over, for files that hold them ahead first.
std::vector<StationEquation> Swapped(std::vector<StationEquation> equations);

struct DisplayedStation {
  double station = 0.0;
  int region = 1;

  bool operator==(const DisplayedStation&) const = default;
};

struct InternalStation {
  double station = 0.0;
  int region = 1;

  bool operator==(const InternalStation&) const = default;
};

class StationEquations {
 public:
  /// No equations: internal and displayed stations are the same.
  StationEquations() = default;

  /// Equations in rising order inside `start`..`end` (internal). Nothing when one falls back or
  /// lies outside; `refused`, when given, takes its index.
  static std::optional<StationEquations> Make(const std::vector<StationEquation>& equations,
                                              double start, double end,
                                              std::size_t* refused = nullptr);

  bool empty() const { return equations_.empty(); }
  const std::vector<StationEquation>& equations() const { return equations_; }
  /// Internal station of equation `index`.
  double At(std::size_t index) const { return internal_[index]; }

  /// The name of an internal station; at an equation the ahead one.
  DisplayedStation Displayed(double internal) const;

  /// Every place that carries a displayed station, in rising order: none in a gap, two in an
  /// overlap. Both sides of an equation count. `region` picks one region.
  std::vector<InternalStation> Internal(double displayed, std::optional<int> region = {}) const;

  /// The same before the start and after the end, where the numbers of the first and the last
  /// region count on. Empty without equations: there every station is an internal one.
  std::vector<InternalStation> Beyond(double displayed, std::optional<int> region = {}) const;

  /// FormatStation of the displayed station; with equations that repeat numbers " R2" follows when
  /// another region carries the same station.
  std::string Text(double internal, StationMode mode, int decimals) const;

 private:
  std::size_t RegionIndex(double internal) const;

  std::vector<StationEquation> equations_;
  std::vector<double> internal_;     // of each equation
  std::vector<double> shifts_{0.0};  // displayed minus internal, of each region
  double start_ = 0.0;
  double end_ = 0.0;
};

/// A typed station: "1475", "14+75.00", "1+475.000", and with a region "14+75.00 R2" or "1475 (2)".
struct StationEntry {
  double displayed = 0.0;
  std::optional<int> region;

  bool operator==(const StationEntry&) const = default;
};
std::optional<StationEntry> ParseStationEntry(std::string_view text);

}  // namespace tarvex
