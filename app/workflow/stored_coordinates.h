// Which stored points lie elsewhere than the job would place them now. A localization that is
// switched on, off or changed moves no stored point: from then on the coordinate file holds two
// kinds of coordinates, and only the positions of the raw file tell them apart.
#pragma once

#include <string>

#include "coordsys/chain/calculator.h"
#include "core/job/job.h"

namespace tarvex {

struct StoredCoordinates {
  std::size_t points = 0;     ///< that the job holds
  std::size_t positions = 0;  ///< those of them with a GNSS position in the raw file
  std::size_t elsewhere = 0;  ///< those of them that would now come out 5 cm away or more
  std::string example;        ///< the id of the first of these

  /// What the person should know, in sentences; empty when the job holds no point.
  std::string Text() const;
};

/// Compares the stored points with what `now` makes of their positions. A job without points, or
/// whose files cannot be read, counts none.
StoredCoordinates CompareStoredCoordinates(Job& job, const CTrgCalculator& now);

}  // namespace tarvex
