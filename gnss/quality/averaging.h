// The mean of several epochs of one point, weighted by their precision, with the scatter about it.
//
// Differences are taken in metres along the meridian and the parallel of the first epoch; over the
// few metres that epochs of one point are apart this is exact to far below a millimetre.
#pragma once

#include <cstddef>
#include <vector>

#include "gnss/position/position_state.h"

namespace tarvex {

struct AveragedPosition {
  std::size_t epochs = 0;
  double latitude = 0.0;      ///< decimal degrees
  double longitude = 0.0;     ///< decimal degrees
  double height = 0.0;        ///< metres
  double scatterNorth = 0.0;  ///< standard deviation of one epoch, metres; 0 for a single one
  double scatterEast = 0.0;
  double scatterUp = 0.0;
  double farthest = 0.0;  ///< greatest horizontal distance of an epoch from the mean, metres
  bool weighted = false;  ///< every epoch told its precision
  std::size_t preciseEpochs = 0;  ///< that told their precision
};

class PositionAverage {
 public:
  /// Takes an epoch; false, and nothing taken, when its epoch was taken before.
  [[nodiscard]] bool Add(const GnssPositionState& state);

  std::size_t epochs() const { return epochs_.size(); }
  /// Weights 1/HRMS^2 and 1/VRMS^2 when every epoch has a precision of its own, else equal ones.
  AveragedPosition Mean() const;

  /// The state of a point for all epochs: mean position, worst solution, fewest
  /// satellites, greatest PDOP, HRMS and VRMS the quadratic mean of those of the epochs that told
  /// them; unknown when none did. Epochs of one sitting err alike, so averaging is not taken to
  /// make them smaller.
  GnssPositionState State() const;

 private:
  struct Epoch {
    double northM;
    double eastM;
    double upM;
    double hrmsM;
    double vrmsM;
    bool precise;
  };

  std::vector<Epoch> epochs_;
  std::vector<std::int32_t> times_;
  GnssPositionState first_;
  GnssPositionState worst_;
  std::size_t preciseEpochs_ = 0;
  double squareHrms_ = 0.0;
  double squareVrms_ = 0.0;
  double metresPerDegreeNorth_ = 0.0;
  double metresPerDegreeEast_ = 0.0;
};

}  // namespace tarvex
