// What the calculator's single points and its arrays share; nothing for its callers.
#pragma once

#include <cmath>
#include <numbers>

#include "coordsys/chain/calculator.h"

namespace tarvex {

// The height on the system's datum and the geoid settle in two or three passes.
inline constexpr int kHeightPasses = 10;
inline constexpr double kHeightSettledM = 1e-7;

inline bool IsNumber(double a, double b, double c) {
  return std::isfinite(a) && std::isfinite(b) && std::isfinite(c);
}

// Grids know longitudes from -180 to 180 degrees; one that is there already keeps its bits.
inline double WithinHalfTurns(double longitudeRad) {
  constexpr double kHalfTurn = std::numbers::pi;
  const bool within = std::fabs(longitudeRad) <= kHalfTurn;
  return within ? longitudeRad : std::remainder(longitudeRad, 2.0 * kHalfTurn);
}

// What happens while one point goes through the chain.
struct CTrgCalculator::Run {
  CalculationReport* report = nullptr;
  bool inPart = false;

  void Note(CalculationStep step, const StepValue& value) {
    if (report) Add(step, value);
  }

  void NoteScale(const Projection& projection, LatLon at) {
    if (report) report->steps.back().pointScale = projection.PointScale(at);
  }

  // Takes the outcome of a step that was given, and describes it.
  template <typename Step>
  CalculationResult Take(const Step& step, StepOutcome outcome) {
    if (report) {
      report->steps.back().description = step.Describe();
      report->steps.back().outcome = outcome;
    }
    if (outcome.status == StepStatus::LibraryMissing) return CalculationResult::LibraryMissing;
    if (outcome.status == StepStatus::Refused) return CalculationResult::StepRefused;
    if (outcome.status == StepStatus::LeftUndone) inPart = true;
    return CalculationResult::Done;
  }

  // A step that was not given and is reported as left undone.
  void LeaveUndone(CalculationStep step, const GridMetres& at, int reason) {
    inPart = true;
    Note(step, at);
    if (report) report->steps.back().outcome = {StepStatus::LeftUndone, reason};
  }

  CalculationResult End() const {
    return inPart ? CalculationResult::DoneInPart : CalculationResult::Done;
  }

 private:
  void Add(CalculationStep step, const StepValue& value);
};

}  // namespace tarvex
