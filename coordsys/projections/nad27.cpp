#include "coordsys/projections/nad27.h"

#include <utility>

#include "coordsys/projections/lambert_conformal_conic.h"
#include "coordsys/projections/oblique_mercator.h"
#include "coordsys/projections/transverse_mercator.h"
#include "core/units.h"

namespace tarvex {
namespace {

// A projection whose lengths are feet, seen in metres.
class InUsSurveyFeet final : public Projection {
 public:
  explicit InUsSurveyFeet(std::unique_ptr<const Projection> feet) : feet_(std::move(feet)) {}

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept override {
    PlanePoint in_feet;
    const ProjectionResult result = feet_->Forward(position, in_feet);
    if (result != ProjectionResult::Done) return result;
    point = {in_feet.northing_m * kUsFeetToMetres, in_feet.easting_m * kUsFeetToMetres};
    return result;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept override {
    return feet_->Inverse({point.northing_m * kMetresToUsFeet, point.easting_m * kMetresToUsFeet},
                          position);
  }

  std::size_t Forward(std::span<const double> latitude_rad, std::span<const double> longitude_rad,
                      std::span<double> northing_m,
                      std::span<double> easting_m) const noexcept override {
    const std::size_t refused = feet_->Forward(latitude_rad, longitude_rad, northing_m, easting_m);
    for (double& value : northing_m) value *= kUsFeetToMetres;
    for (double& value : easting_m) value *= kUsFeetToMetres;
    return refused;
  }

  std::size_t Inverse(std::span<const double> northing_m, std::span<const double> easting_m,
                      std::span<double> latitude_rad,
                      std::span<double> longitude_rad) const noexcept override {
    for (std::size_t i = 0; i < northing_m.size(); ++i) {
      const double northing_ft = northing_m[i] * kMetresToUsFeet;
      const double easting_ft = easting_m[i] * kMetresToUsFeet;
      latitude_rad[i] = northing_ft;
      longitude_rad[i] = easting_ft;
    }
    return feet_->Inverse(latitude_rad, longitude_rad, latitude_rad, longitude_rad);
  }

  std::optional<double> PointScale(LatLon position) const noexcept override {
    return feet_->PointScale(position);
  }

 private:
  std::unique_ptr<const Projection> feet_;
};

MadeProjection MakeInFeet(ProjectionParameters parameters,
                          MadeProjection (*make)(const ProjectionParameters&)) {
  parameters.ellipsoid.semi_major_m *= kMetresToUsFeet;
  parameters.false_easting_m *= kMetresToUsFeet;
  parameters.false_northing_m *= kMetresToUsFeet;
  MadeProjection made = make(parameters);
  if (made.projection) {
    made.projection = std::make_unique<InUsSurveyFeet>(std::move(made.projection));
  }
  return made;
}

}  // namespace

MadeProjection MakeObliqueMercator27(const ProjectionParameters& parameters) {
  return MakeInFeet(parameters, MakeObliqueMercatorA);
}

MadeProjection MakeTransverseMercator27(const ProjectionParameters& parameters) {
  return MakeInFeet(parameters, MakeTransverseMercator);
}

MadeProjection MakeLambertConformalConic27(const ProjectionParameters& parameters) {
  return MakeInFeet(parameters, MakeLambertConformalConic2SP);
}

double ToRadians(const DegreesMinutesSeconds& angle) {
  return (angle.degrees + angle.minutes * 0.016666666666666666 +
          angle.seconds * 0.0002777777777777778) *
         kRadiansPerDegree;
}

ProjectionResult ForwardFromEntry(const Projection& projection,
                                  const DegreesMinutesSeconds& latitude,
                                  const DegreesMinutesSeconds& longitude, PlanePoint& point) {
  return projection.Forward({ToRadians(latitude), ToRadians(longitude)}, point);
}

}  // namespace tarvex
