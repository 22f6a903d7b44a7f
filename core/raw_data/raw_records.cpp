#include "core/raw_data/raw_records.h"

#include "core/job/azimuth.h"
#include "core/raw_data/record_text.h"
#include "core/text/date_text.h"

namespace tarvex {
namespace {

constexpr int kPackedDecimals = 4;
constexpr int kPositionDecimals = 12;

RecordText& Coordinates(RecordText& record, const GridPoint& at, int decimals,
                        int elevationDecimals) {
  return record.Number("N ", at.northing, decimals)
      .Number("E ", at.easting, decimals)
      .Number("EL", at.elevation, elevationDecimals);
}

}  // namespace

std::string RawHeader(const Job& job, const LocalTime& now) {
  const std::string_view name = job.name.empty() ? std::string_view("$noname$") : job.name;
  std::string text = RecordText("JB")
                         .Text("NM", name)
                         .Text("DT", DateText(now))
                         .Text("TM", TimeText(now))
                         .str()
                         .substr(1);
  text += RecordText("MO")
              .Number("AD", job.options.azimuthsFromSouth ? 1 : 0, 0)
              .Number("UN", 2 - static_cast<int>(job.options.unit), 0)
              .Number("SF", job.options.scaleFactor, 8)
              .Number("EC", job.options.curvatureCorrection ? 1 : 0, 0)
              .Text("EO", "0.0")
              .Text("AU", "0")
              .str();
  text += CommentRecord(job.options.collector);
  return text + CommentRecord("CRD: " + std::string(job.store.layoutName()));
}

std::string CommentRecord(std::string_view text) {
  std::string record;
  do {
    const auto line = TakeLine(text);
    record += "\n--";
    record += OneLine(line.value_or(""));
  } while (!text.empty());
  return record;
}

std::string TimeStampRecord(const LocalTime& now) {
  return "\n--DT" + DateText(now) + "\n--TM" + TimeText(now);
}

std::string OccupyRecord(const Point& occupied) {
  RecordText record("OC");
  record.Text("OP", occupied.id.view());
  return Coordinates(record, occupied.at, 5, 3).Description(occupied.description.view()).str();
}

std::string HeightsRecord(double instrumentHeight, double rodHeight) {
  return RecordText("LS").Number("HI", instrumentHeight, 4).Number("HR", rodHeight, 4).str();
}

std::string RodHeightRecord(double rodHeight) {
  return RecordText("LS").Number("HR", rodHeight, 4).str();
}

std::string BacksightRecord(const Job& job, const Backsight& backsight) {
  return RecordText("BK")
      .Text("OP", backsight.occupiedId)
      .Text("BP", backsight.backsightId)
      .Angle("BS", RecordedAzimuth(job, backsight.azimuthDegrees), kPackedDecimals)
      .Angle("BC", backsight.circleDegrees, kPackedDecimals)
      .str();
}

std::string StoredPointRecord(const Point& point, std::string_view description) {
  RecordText record("SP");
  record.Text("PN", point.id.view());
  return Coordinates(record, point.at, 4, 4).Description(description).str();
}

std::string ReplacedPointRecord(const Point& point) {
  return CommentRecord("Replaced point:" +
                       StoredPointRecord(point, point.description.view()).substr(1));
}

std::string RecomputedPointRecord(const Point& point) {
  return CommentRecord("Recomputed point:" +
                       StoredPointRecord(point, point.description.view()).substr(1));
}

std::string DeletedPointRecord(const Point& point) {
  return CommentRecord("Deleted point:" +
                       StoredPointRecord(point, point.description.view()).substr(1));
}

std::string TakenBackPointRecord(const Point& point) {
  return CommentRecord("Taken back point:" +
                       StoredPointRecord(point, point.description.view()).substr(1));
}

std::string GnssRecord(const GnssRecordFields& fields) {
  return RecordText("GPS")
      .Text("PN", fields.pointId)
      .Angle("LA", fields.latitudeDegrees, kPositionDecimals)
      .Angle("LN", fields.longitudeDegrees, kPositionDecimals)
      .Number("EL", fields.height, 6)
      .Description(fields.description)
      .str();
}

std::string GnssGridRecord(const Point& point, std::string_view description) {
  RecordText record("--GS");
  record.Text("PN", point.id.view());
  return Coordinates(record, point.at, 4, 4).Description(description).str();
}

std::string GnssBaseRecord(double latitudeDegrees, double longitudeDegrees, double height) {
  return RecordText("BP")
      .Text("PN", "")
      .Angle("LA", latitudeDegrees, kPositionDecimals)
      .Angle("LN", longitudeDegrees, kPositionDecimals)
      .Number("EL", height, 4)
      .str();
}

std::string AntennaRecord(std::string_view antennaType, HeightKind kind) {
  return CommentRecord("Antenna Type: " + OneLine(antennaType) + ", " +
                       (kind == HeightKind::Slant ? "Slant" : "Vertical"));
}

std::string EdmModeRecord(std::string_view mode) {
  return CommentRecord("EDM Mode: " + OneLine(mode));
}

std::string ElevationModeRecord(bool threeDimensional) {
  return CommentRecord(threeDimensional ? "Elevation: 3D" : "Elevation: 2D");
}

std::string Wgs84ShiftRecord(bool shifted) {
  return CommentRecord(shifted ? "WGS84 raw positions shifted to NAD83"
                               : "WGS84 raw positions no longer shifted to NAD83");
}

std::string ShiftParametersRecord(const ShiftParameters& shift) {
  std::string text = "\n--";
  const auto add = [&text](std::string_view name, double value, int decimals) {
    text += name;
    AppendFixed(text, value, decimals);
  };
  add("dX: ", shift.dx, 8);
  add(", dY: ", shift.dy, 8);
  add(", dZ: ", shift.dz, 8);
  add(", rotX: ", shift.rotationX, 10);
  add(", rotY: ", shift.rotationY, 10);
  add(", rotZ: ", shift.rotationZ, 10);
  add(", scale: ", shift.scale, 10);
  return text;
}

}  // namespace tarvex
