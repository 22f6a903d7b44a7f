// Derives the elements of an alignment from the chain of key points; see Alignment::FromChain.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "roads/alignment.h"

namespace tarvex {

class AlignmentBuilder {
 public:
  AlignmentBuilder(std::span<const CenterlineElement> chain, const CheckLimits& limits)
      : chain_(chain), limits_(limits) {}

  Outcome<Alignment, AlignmentFault> Build();

 private:
  /// Two nodes of the chain and what lies between them as numbers.
  struct Run {
    std::size_t from = 0;
    std::size_t to = 0;
    double chord = 0.0;
    double azimuth = 0.0;
    double stations = 0.0;
  };
  struct Circle {
    PlanPoint center;
    double radius = 0.0;
    double turn = 1.0;  ///< +1 right, -1 left
  };

  Run RunBetween(std::size_t from, std::size_t to) const;
  std::size_t TakeFrom(std::size_t node);
  std::size_t TakeGroup(std::size_t node);
  std::size_t TakeLoneCurve(std::size_t node);

  void AddTangent(const Run& run, ElementFault fault);
  void AddArc(const Run& run, const CenterlineElement& curve);
  void AddTransition(const Run& run, const Circle& circle, bool entry, double field);
  void AddSpiralRecord(const Run& run);

  AlignmentElement Begin(const Run& run, ElementShape shape, ElementFault fault) const;
  void AddSpiral(const Run& run, AlignmentElement element, double k0, double k1, double length);
  void Finish(AlignmentElement element, const CurvePiece& piece);
  std::optional<Circle> CircleAt(std::size_t node, const Run& run) const;
  double TurnOf(const Run& run, const CenterlineElement& curve, double side) const;
  void AddJoins();
  void JudgeSoundness();

  std::span<const CenterlineElement> chain_;
  CheckLimits limits_;
  Alignment alignment_;
};

}  // namespace tarvex
