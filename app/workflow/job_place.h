// Where a position is in a job: its grid coordinates, and from there the way to one of its points.
// Nothing of the job is changed.
#pragma once

#include <optional>
#include <string>

#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_session.h"
#include "app/workflow/observation.h"

namespace tarvex {

/// In the job's unit; the azimuth is counted from grid north, clockwise, and 0 on the point itself.
struct WayToPoint {
  std::string id;
  double distance = 0.0;  ///< horizontal, on the grid
  double azimuthRad = 0.0;
  double north = 0.0;
  double east = 0.0;
  std::optional<double> up;  ///< nothing when one of the two has no elevation
};

struct JobPlace {
  GridPosition position;
  bool hasElevation = false;  ///< the receiver gave a height
  std::optional<WayToPoint> way;
};

class JobPlaces {
 public:
  /// `jobPath` names the coordinate file.
  JobPlaces(const Workplace& work, const std::string& jobPath);

  /// Opens the job and looks for the point; an empty id wants none. False with a sentence in
  /// `problem`, which is empty when the observer was told already.
  [[nodiscard]] bool Open(const std::string& toPoint, std::string& problem);

  /// `antennaHeight` above the mark, job's unit.
  JobPlace Of(const GnssPositionState& state, double antennaHeight) const;

  Settings& settings() { return session_.settings(); }
  const CTrgCalculator& calculator() const { return calculator_; }
  DistanceUnit unit() const { return unit_; }

 private:
  JobSession session_;
  CoordinateSystems systems_;
  CTrgCalculator calculator_;
  std::optional<Point> to_;
  DistanceUnit unit_ = DistanceUnit::Metres;
};

}  // namespace tarvex
