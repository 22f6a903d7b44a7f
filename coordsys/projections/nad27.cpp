#include "coordsys/projections/nad27.h"

#include <utility>

#include "coordsys/projections/lambert_conformal_conic.h"
#include "coordsys/projections/oblique_mercator.h"
#include "coordsys/projections/transverse_mercator.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

// A projection whose lengths are feet, seen in metres.
class InUsSurveyFeet final : public Projection {
 public:
  explicit InUsSurveyFeet(std::unique_ptr<const Projection> feet) : feet_(std::move(feet)) {}

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept override {
    PlanePoint inFeet;
    const ProjectionResult result = feet_->Forward(position, inFeet);
    if (result != ProjectionResult::Done) return result;
    point = {inFeet.northingM * kUsFeetToMetres, inFeet.eastingM * kUsFeetToMetres};
    return result;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept override {
    return feet_->Inverse({point.northingM * kMetresToUsFeet, point.eastingM * kMetresToUsFeet},
                          position);
  }

  std::size_t Forward(std::span<const double> latitudeRad, std::span<const double> longitudeRad,
                      std::span<double> northingM,
                      std::span<double> eastingM) const noexcept override {
    const std::size_t refused = feet_->Forward(latitudeRad, longitudeRad, northingM, eastingM);
    for (double& value : northingM) value *= kUsFeetToMetres;
    for (double& value : eastingM) value *= kUsFeetToMetres;
    return refused;
  }

  std::size_t Inverse(std::span<const double> northingM, std::span<const double> eastingM,
                      std::span<double> latitudeRad,
                      std::span<double> longitudeRad) const noexcept override {
    for (std::size_t i = 0; i < northingM.size(); ++i) {
      const double northingFt = northingM[i] * kMetresToUsFeet;
      const double eastingFt = eastingM[i] * kMetresToUsFeet;
      latitudeRad[i] = northingFt;
      longitudeRad[i] = eastingFt;
    }
    return feet_->Inverse(latitudeRad, longitudeRad, latitudeRad, longitudeRad);
  }

  std::optional<double> PointScale(LatLon position) const noexcept override {
    return feet_->PointScale(position);
  }

 private:
  std::unique_ptr<const Projection> feet_;
};

MadeProjection MakeInFeet(ProjectionParameters parameters,
                          MadeProjection (*make)(const ProjectionParameters&)) {
  parameters.ellipsoid.semiMajorM *= kMetresToUsFeet;
  parameters.falseEastingM *= kMetresToUsFeet;
  parameters.falseNorthingM *= kMetresToUsFeet;
  MadeProjection made = make(parameters);
  if (!made) return made;
  return {std::make_unique<InUsSurveyFeet>(*std::move(made))};
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
