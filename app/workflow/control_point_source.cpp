#include "app/workflow/control_point_source.h"

#include <cmath>

#include "app/workflow/raw_positions.h"
#include "core/coordinate_file.h"
#include "core/point_id.h"
#include "core/point_store.h"
#include "core/raw_file.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestRawFile = std::uint64_t{1} << 32U;

ExitCode TakeTypedPosition(const LocalizeOptions& options, Program& program,
                           LocalizationPoint& point) {
  const double latitude = options.wgs84[0];
  const double longitude = options.wgs84[1];
  if (!(std::abs(latitude) <= 90.0 && std::abs(longitude) <= 360.0)) {
    return program.Misuse("--wgs84 takes latitude, longitude (decimal degrees) and height.");
  }
  point.gnss = {latitude * kRadiansPerDegree, longitude * kRadiansPerDegree, options.wgs84[2]};
  return ExitCode::Done;
}

ExitCode TakeGnss(const LocalizeOptions& options, Job& job, Program& program,
                  LocalizationPoint& point) {
  if (options.wgs84.empty() == options.gnss_id.empty()) {
    return program.Misuse("Give the GNSS position with --wgs84 LAT LON HEIGHT or --gnss ID.");
  }
  if (!options.wgs84.empty()) return TakeTypedPosition(options, program, point);
  const std::string path = RawFilePath(job);
  std::string raw;
  const FileStatus status = ReadWholeFile(program.files, path, kLargestRawFile, raw);
  if (!status.ok()) {
    return program.Fail("The raw file " + path + " cannot be read: " + status.Text() + ".");
  }
  const auto found = FindRawPosition(raw, NormalisePointId(options.gnss_id).view(), job.unit);
  if (!found) {
    return program.Fail("The raw file holds no GNSS position of point " + options.gnss_id + ".");
  }
  point.gnss = *found;
  point.description = options.gnss_id;
  return ExitCode::Done;
}

ExitCode TakeLocal(const LocalizeOptions& options, Job& job, Program& program,
                   LocalizationPoint& point) {
  if (options.local.empty() == options.known_id.empty()) {
    return program.Misuse("Give the local coordinates with --local N E EL or --known ID.");
  }
  GridPoint at;
  if (!options.local.empty()) {
    at = {options.local[0], options.local[1], options.local[2]};
  } else {
    const auto stream = OpenCoordinateFile(job);
    Point known;
    if (!stream ||
        ReadPoint(job, options.known_id, stream.get(), known) != ReadPointResult::Found) {
      return program.Fail("There is no point " + options.known_id + " in " + job.path + ".");
    }
    at = known.at;
    point.description = known.id.str();
  }
  point.local_x = at.easting;
  point.local_y = at.northing;
  point.local_z = at.elevation;
  return ExitCode::Done;
}

}  // namespace

ExitCode ReadControlPoint(const LocalizeOptions& options, Job& job, Program& program,
                          LocalizationPoint& point) {
  ExitCode exit_code = TakeGnss(options, job, program, point);
  if (exit_code == ExitCode::Done) exit_code = TakeLocal(options, job, program, point);
  if (exit_code != ExitCode::Done) return exit_code;
  point.hrms = options.hrms;
  point.vrms = options.vrms;
  point.use_horizontal = options.no_horizontal ? 'N' : 'Y';
  point.use_vertical = options.no_vertical ? 'N' : 'Y';
  if (!options.description.empty()) point.description = options.description;
  return ExitCode::Done;
}

}  // namespace tarvex
