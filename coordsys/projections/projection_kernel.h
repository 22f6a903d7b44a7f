// Makes a Projection of a family's kernel: a small value with its constants and two functions over
// some points side by side (lanes.h),
//
//   template <typename Lanes>
//   LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept;
//   LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept;
//
// whose result is true in the lanes that lie in the family's domain; in the others the outputs may
// be anything. Both are inlined into the loops over arrays. A position beyond 90 degrees of
// latitude or 360 of longitude, and a plane point beyond 1e9 m, are refused here.
//
// The same kernel is compiled for one lane, a single point, for two, which every processor has, and
// for four, taken where the processor at hand has 256-bit registers (AVX2). Every lane of
// either gives the same bits: the same operations in the same order, none of them contracted.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <numbers>

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/lanes.h"
#include "coordsys/projections/projection.h"
#include "coordsys/projections/projection_domain.h"

namespace tarvex {

template <typename Lanes>
struct LanePosition {
  Lanes latitudeRad;
  Lanes longitudeRad;
};

template <typename Lanes>
struct LanePoint {
  Lanes northingM;
  Lanes eastingM;
};

template <typename Kernel>
class KernelProjection : public Projection {
 public:
  explicit KernelProjection(const Kernel& kernel) : kernel_(kernel) {}

  [[gnu::flatten]] ProjectionResult Forward(LatLon position,
                                            PlanePoint& point) const noexcept override {
    LanePoint<OneLane> out;
    const auto inside = ForwardLanes<OneLane>({position.latitudeRad, position.longitudeRad}, out);
    if (!inside) return Refusal(position.latitudeRad, position.longitudeRad);
    point = {out.northingM, out.eastingM};
    return ProjectionResult::Done;
  }
  [[gnu::flatten]] ProjectionResult Inverse(PlanePoint point,
                                            LatLon& position) const noexcept override {
    LanePosition<OneLane> out;
    const auto inside = InverseLanes<OneLane>({point.northingM, point.eastingM}, out);
    if (!inside) return Refusal(point.northingM, point.eastingM);
    position = {out.latitudeRad, out.longitudeRad};
    return ProjectionResult::Done;
  }
  std::size_t Forward(std::span<const double> latitudeRad, std::span<const double> longitudeRad,
                      std::span<double> northingM,
                      std::span<double> eastingM) const noexcept override {
    return ForwardAll<TwoLanes>(latitudeRad, longitudeRad, northingM, eastingM);
  }
  std::size_t Inverse(std::span<const double> northingM, std::span<const double> eastingM,
                      std::span<double> latitudeRad,
                      std::span<double> longitudeRad) const noexcept override {
    return InverseAll<TwoLanes>(northingM, eastingM, latitudeRad, longitudeRad);
  }

  std::optional<double> PointScale(LatLon position) const noexcept override {
    if constexpr (requires { kernel_.PointScale(position); }) {
      PlanePoint point;
      if (Forward(position, point) == ProjectionResult::Done) return kernel_.PointScale(position);
    }
    return std::nullopt;
  }

 protected:
  template <typename Lanes>
  std::size_t ForwardAll(std::span<const double> latitudeRad, std::span<const double> longitudeRad,
                         std::span<double> northingM, std::span<double> eastingM) const noexcept {
    const auto convert = [this](Lanes latitude, Lanes longitude, Lanes& northing, Lanes& easting) {
      LanePoint<Lanes> point;
      const auto inside = ForwardLanes<Lanes>({latitude, longitude}, point);
      northing = point.northingM;
      easting = point.eastingM;
      return inside;
    };
    return Convert<Lanes>(convert, latitudeRad, longitudeRad, northingM, eastingM);
  }

  template <typename Lanes>
  std::size_t InverseAll(std::span<const double> northingM, std::span<const double> eastingM,
                         std::span<double> latitudeRad,
                         std::span<double> longitudeRad) const noexcept {
    const auto convert = [this](Lanes northing, Lanes easting, Lanes& latitude, Lanes& longitude) {
      LanePosition<Lanes> position;
      const auto inside = InverseLanes<Lanes>({northing, easting}, position);
      latitude = position.latitudeRad;
      longitude = position.longitudeRad;
      return inside;
    };
    return Convert<Lanes>(convert, northingM, eastingM, latitudeRad, longitudeRad);
  }

 private:
  static constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

  template <typename Lanes>
  LaneMask<Lanes> ForwardLanes(LanePosition<Lanes> position,
                               LanePoint<Lanes>& point) const noexcept {
    const LaneMask<Lanes> onEarth = Within(position.latitudeRad, kFarthestLatitudeRad) &
                                    Within(position.longitudeRad, kFarthestLongitudeRad);
    return onEarth & kernel_.Forward(position, point);
  }

  template <typename Lanes>
  LaneMask<Lanes> InverseLanes(LanePoint<Lanes> point,
                               LanePosition<Lanes>& position) const noexcept {
    const LaneMask<Lanes> onPlane =
        Within(point.northingM, kFarthestPlaneM) & Within(point.eastingM, kFarthestPlaneM);
    return onPlane & kernel_.Inverse(point, position);
  }

  // As many points at a time as there are lanes; the last ones leave lanes over, which take the
  // last point again.
  template <typename Lanes, typename ConvertLanes>
  static std::size_t Convert(const ConvertLanes& convert, std::span<const double> inA,
                             std::span<const double> inB, std::span<double> outA,
                             std::span<double> outB) noexcept {
    std::size_t refused = 0;
    const std::size_t size = inA.size();
    for (std::size_t begin = 0; begin < size; begin += kLanes<Lanes>) {
      const std::size_t count = std::min(kLanes<Lanes>, size - begin);
      const bool full = count == kLanes<Lanes>;
      Lanes a = full ? Loaded<Lanes>(inA.data() + begin) : Filled<Lanes>(inA.subspan(begin));
      Lanes b = full ? Loaded<Lanes>(inB.data() + begin) : Filled<Lanes>(inB.subspan(begin));
      const LaneMask<Lanes> inside = convert(a, b, a, b);
      a = Select(inside, a, kNaN);
      b = Select(inside, b, kNaN);
      if (full) {
        std::memcpy(outA.data() + begin, &a, sizeof(Lanes));
        std::memcpy(outB.data() + begin, &b, sizeof(Lanes));
      }
      for (std::size_t i = 0; i < count; ++i) {
        if (!full) {
          outA[begin + i] = a[i];
          outB[begin + i] = b[i];
        }
        refused += static_cast<std::size_t>(inside[i] == 0);
      }
    }
    return refused;
  }

  template <typename Lanes>
  static Lanes Loaded(const double* values) noexcept {
    Lanes lanes = {};
    std::memcpy(&lanes, values, sizeof(Lanes));
    return lanes;
  }

  template <typename Lanes>
  static Lanes Filled(std::span<const double> values) noexcept {
    Lanes lanes = {};
    for (std::size_t i = 0; i < kLanes<Lanes>; ++i) {
      lanes[i] = values[std::min(i, values.size() - 1)];
    }
    return lanes;
  }

  Kernel kernel_;
};

#if defined(TARVEX_FOUR_LANES)
template <typename Kernel>
class FourLaneProjection final : public KernelProjection<Kernel> {
 public:
  using KernelProjection<Kernel>::KernelProjection;

  TARVEX_FOUR_LANES std::size_t Forward(std::span<const double> latitudeRad,
                                        std::span<const double> longitudeRad,
                                        std::span<double> northingM,
                                        std::span<double> eastingM) const noexcept override {
    return this->template ForwardAll<FourLanes>(latitudeRad, longitudeRad, northingM, eastingM);
  }
  TARVEX_FOUR_LANES std::size_t Inverse(std::span<const double> northingM,
                                        std::span<const double> eastingM,
                                        std::span<double> latitudeRad,
                                        std::span<double> longitudeRad) const noexcept override {
    return this->template InverseAll<FourLanes>(northingM, eastingM, latitudeRad, longitudeRad);
  }
};
#endif

template <typename Kernel>
MadeProjection MakeOf(const Kernel& kernel) {
#if defined(TARVEX_FOUR_LANES)
  if (HasFourLanes()) {
    return {std::make_unique<FourLaneProjection<Kernel>>(kernel)};
  }
#endif
  return {std::make_unique<KernelProjection<Kernel>>(kernel)};
}

}  // namespace tarvex
