// Makes a Projection of a family's kernel: a small value with its constants and two functions over
// some points side by side (lanes.h),
//
//   template <typename Points, typename Lanes>
//   LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept;
//   LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept;
//
// whose result is true in the lanes that lie in the family's domain; in the others the outputs may
// be anything. `Points` says whether every lane is a point of its own, or two angles of a single
// point can share the lanes (auxiliary_latitude.h). Both are inlined into the loops over arrays. A
// position beyond 90 degrees of latitude or 360 of longitude, and a plane point beyond 1e9 m, are
// refused here.
//
// The same kernel is compiled twice where the compiler can: for two lanes, which every processor
// has, and for four, taken where the processor at hand has 256-bit registers (AVX2). Every lane of
// either gives the same bits: the same operations in the same order, none of them contracted.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <numbers>

#include "coordsys/projection.h"
#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/lanes.h"

namespace tarvex {

template <typename Lanes>
struct LanePosition {
  Lanes latitude_rad;
  Lanes longitude_rad;
};

template <typename Lanes>
struct LanePoint {
  Lanes northing_m;
  Lanes easting_m;
};

template <typename Kernel>
class KernelProjection : public Projection {
 public:
  KernelProjection(const Kernel& kernel, bool takes_wgs84)
      : kernel_(kernel), takes_wgs84_(takes_wgs84) {}

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept override {
    return ForwardOne(position, point);
  }
  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept override {
    return InverseOne(point, position);
  }
  std::size_t Forward(std::span<const double> latitude_rad, std::span<const double> longitude_rad,
                      std::span<double> northing_m,
                      std::span<double> easting_m) const noexcept override {
    return ForwardAll<TwoLanes>(latitude_rad, longitude_rad, northing_m, easting_m);
  }
  std::size_t Inverse(std::span<const double> northing_m, std::span<const double> easting_m,
                      std::span<double> latitude_rad,
                      std::span<double> longitude_rad) const noexcept override {
    return InverseAll<TwoLanes>(northing_m, easting_m, latitude_rad, longitude_rad);
  }

  bool TakesWgs84() const noexcept override { return takes_wgs84_; }

  std::optional<double> PointScale(LatLon position) const noexcept override {
    if constexpr (requires { kernel_.PointScale(position); }) {
      PlanePoint point;
      if (Forward(position, point) == ProjectionResult::Done) return kernel_.PointScale(position);
    }
    return std::nullopt;
  }

 protected:
  ProjectionResult ForwardOne(LatLon position, PlanePoint& point) const noexcept {
    LanePoint<TwoLanes> out;
    const auto inside = ForwardLanes<OnePoint, TwoLanes>(
        {InAll<TwoLanes>(position.latitude_rad), InAll<TwoLanes>(position.longitude_rad)}, out);
    if (!inside[0]) return Why(position.latitude_rad, position.longitude_rad);
    point = {out.northing_m[0], out.easting_m[0]};
    return ProjectionResult::Done;
  }

  ProjectionResult InverseOne(PlanePoint point, LatLon& position) const noexcept {
    LanePosition<TwoLanes> out;
    const auto inside = InverseLanes<OnePoint, TwoLanes>(
        {InAll<TwoLanes>(point.northing_m), InAll<TwoLanes>(point.easting_m)}, out);
    if (!inside[0]) return Why(point.northing_m, point.easting_m);
    position = {out.latitude_rad[0], out.longitude_rad[0]};
    return ProjectionResult::Done;
  }

  template <typename Lanes>
  std::size_t ForwardAll(std::span<const double> latitude_rad,
                         std::span<const double> longitude_rad, std::span<double> northing_m,
                         std::span<double> easting_m) const noexcept {
    const auto convert = [this](Lanes latitude, Lanes longitude, Lanes& northing, Lanes& easting) {
      LanePoint<Lanes> point;
      const auto inside = ForwardLanes<PointInEach, Lanes>({latitude, longitude}, point);
      northing = point.northing_m;
      easting = point.easting_m;
      return inside;
    };
    return Convert<Lanes>(convert, latitude_rad, longitude_rad, northing_m, easting_m);
  }

  template <typename Lanes>
  std::size_t InverseAll(std::span<const double> northing_m, std::span<const double> easting_m,
                         std::span<double> latitude_rad,
                         std::span<double> longitude_rad) const noexcept {
    const auto convert = [this](Lanes northing, Lanes easting, Lanes& latitude, Lanes& longitude) {
      LanePosition<Lanes> position;
      const auto inside = InverseLanes<PointInEach, Lanes>({northing, easting}, position);
      latitude = position.latitude_rad;
      longitude = position.longitude_rad;
      return inside;
    };
    return Convert<Lanes>(convert, northing_m, easting_m, latitude_rad, longitude_rad);
  }

 private:
  static constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

  template <typename Points, typename Lanes>
  LaneMask<Lanes> ForwardLanes(LanePosition<Lanes> position,
                               LanePoint<Lanes>& point) const noexcept {
    const LaneMask<Lanes> on_earth = Within(position.latitude_rad, std::numbers::pi / 2.0) &
                                     Within(position.longitude_rad, 2.0 * std::numbers::pi);
    return on_earth & kernel_.template Forward<Points>(position, point);
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> InverseLanes(LanePoint<Lanes> point,
                               LanePosition<Lanes>& position) const noexcept {
    constexpr double kFarthest_m = 1e9;
    const LaneMask<Lanes> on_plane =
        Within(point.northing_m, kFarthest_m) & Within(point.easting_m, kFarthest_m);
    return on_plane & kernel_.template Inverse<Points>(point, position);
  }

  static ProjectionResult Why(double a, double b) noexcept {
    return std::isnan(a) || std::isnan(b) ? ProjectionResult::NotANumber
                                          : ProjectionResult::OutsideDomain;
  }

  // As many points at a time as there are lanes; the last ones leave lanes over, which take the
  // last point again.
  template <typename Lanes, typename ConvertLanes>
  static std::size_t Convert(const ConvertLanes& convert, std::span<const double> in_a,
                             std::span<const double> in_b, std::span<double> out_a,
                             std::span<double> out_b) noexcept {
    std::size_t refused = 0;
    const std::size_t size = in_a.size();
    for (std::size_t begin = 0; begin < size; begin += kLanes<Lanes>) {
      const std::size_t count = std::min(kLanes<Lanes>, size - begin);
      const bool full = count == kLanes<Lanes>;
      Lanes a = full ? Loaded<Lanes>(in_a.data() + begin) : Filled<Lanes>(in_a.subspan(begin));
      Lanes b = full ? Loaded<Lanes>(in_b.data() + begin) : Filled<Lanes>(in_b.subspan(begin));
      const LaneMask<Lanes> inside = convert(a, b, a, b);
      a = Select(inside, a, kNaN);
      b = Select(inside, b, kNaN);
      if (full) {
        std::memcpy(out_a.data() + begin, &a, sizeof(Lanes));
        std::memcpy(out_b.data() + begin, &b, sizeof(Lanes));
      }
      for (std::size_t i = 0; i < count; ++i) {
        if (!full) {
          out_a[begin + i] = a[i];
          out_b[begin + i] = b[i];
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
  bool takes_wgs84_;
};

#if defined(TARVEX_FOUR_LANES)
template <typename Kernel>
class FourLaneProjection final : public KernelProjection<Kernel> {
 public:
  using KernelProjection<Kernel>::KernelProjection;

  TARVEX_FOUR_LANES ProjectionResult Forward(LatLon position,
                                             PlanePoint& point) const noexcept override {
    return this->ForwardOne(position, point);
  }
  TARVEX_FOUR_LANES ProjectionResult Inverse(PlanePoint point,
                                             LatLon& position) const noexcept override {
    return this->InverseOne(point, position);
  }
  TARVEX_FOUR_LANES std::size_t Forward(std::span<const double> latitude_rad,
                                        std::span<const double> longitude_rad,
                                        std::span<double> northing_m,
                                        std::span<double> easting_m) const noexcept override {
    return this->template ForwardAll<FourLanes>(latitude_rad, longitude_rad, northing_m, easting_m);
  }
  TARVEX_FOUR_LANES std::size_t Inverse(std::span<const double> northing_m,
                                        std::span<const double> easting_m,
                                        std::span<double> latitude_rad,
                                        std::span<double> longitude_rad) const noexcept override {
    return this->template InverseAll<FourLanes>(northing_m, easting_m, latitude_rad, longitude_rad);
  }
};
#endif

template <typename Kernel>
MadeProjection MakeOf(const Kernel& kernel, bool takes_wgs84 = false) {
#if defined(TARVEX_FOUR_LANES)
  if (__builtin_cpu_supports("avx2")) {
    return {std::make_unique<FourLaneProjection<Kernel>>(kernel, takes_wgs84),
            ProjectionFault::None};
  }
#endif
  return {std::make_unique<KernelProjection<Kernel>>(kernel, takes_wgs84), ProjectionFault::None};
}

}  // namespace tarvex
