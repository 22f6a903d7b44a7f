#include "core/raw_data/raw_shot.h"

#include "core/job/azimuth.h"
#include "core/raw_data/record_text.h"

namespace tarvex {
namespace {

constexpr int kPackedDecimals = 4;
constexpr int kFloatDecimals = 6;  // "%lf"
constexpr double kHorizontalLine = 90.0;

// "BRN45.300000E": the quadrant's letters are around the bearing.
void AddBearing(RecordText& record, std::string_view from, double bearing, std::string_view to) {
  std::string value(from);
  AppendFixed(value, bearing, kFloatDecimals);
  value += to;
  record.Text("BR", value);
}

void AddHorizontal(RecordText& record, const Job& job, const Shot& shot) {
  switch (shot.horizontalMode) {
    case HorizontalMode::AngleRight:
      record.Angle("AR", shot.horizontal, kPackedDecimals);
      return;
    case HorizontalMode::AngleLeft:
      record.Angle("AL", shot.horizontal, kPackedDecimals);
      return;
    case HorizontalMode::Azimuth:
      record.Angle("AZ", RecordedAzimuth(job, shot.horizontal), kPackedDecimals);
      return;
    case HorizontalMode::BearingNE:
      return AddBearing(record, "N", shot.horizontal, "E");
    case HorizontalMode::BearingSE:
      return AddBearing(record, "S", shot.horizontal, "E");
    case HorizontalMode::BearingSW:
      return AddBearing(record, "S", shot.horizontal, "W");
    case HorizontalMode::BearingNW:
      return AddBearing(record, "N", shot.horizontal, "W");
  }
}

void AddVerticalAndDistance(RecordText& record, const Shot& shot) {
  switch (shot.verticalMode) {
    case VerticalMode::None:
      record.Angle("ZE", kHorizontalLine, kPackedDecimals);
      break;
    case VerticalMode::Zenith:
      record.Angle("ZE", shot.vertical, kPackedDecimals);
      break;
    case VerticalMode::VerticalAngle:
      record.Angle("VA", shot.vertical, kPackedDecimals);
      break;
    case VerticalMode::ChangeInElevation:
      record.Number("CE", shot.vertical, kFloatDecimals)
          .Number("HD", shot.distance, kFloatDecimals);
      return;
  }
  record.Number("SD", shot.distance, kFloatDecimals);
}

std::string ShotRecord(std::string_view code, const Job& job, const Shot& shot) {
  RecordText record(code);
  record.Text("OP", shot.occupiedId).Text("FP", shot.foresightId);
  AddHorizontal(record, job, shot);
  AddVerticalAndDistance(record, shot);
  return record.Description(shot.description).str();
}

std::string_view SetReadingCode(SetReading kind) {
  switch (kind) {
    case SetReading::BacksightDirect:
      return "BD";
    case SetReading::BacksightReverse:
      return "BR";
    case SetReading::ForesightDirect:
      return "FD";
    case SetReading::ForesightReverse:
      break;
  }
  return "FR";
}

RecordText& AddReading(RecordText& record, const Reading& reading, int distanceDecimals) {
  return record.Angle("AR", reading.angleRightDegrees, kPackedDecimals)
      .Angle("ZE", reading.zenithDegrees, kPackedDecimals)
      .Number("SD", reading.slopeDistance, distanceDecimals);
}

}  // namespace

std::string SideshotRecord(const Job& job, const Shot& shot) {
  return ShotRecord("SS", job, shot);
}

std::string TraverseRecord(const Job& job, const Shot& shot) {
  return ShotRecord("TR", job, shot);
}

std::string SetReadingRecord(SetReading kind, std::string_view occupiedId,
                             std::string_view foresightId, const Reading& reading,
                             std::string_view description) {
  RecordText record(SetReadingCode(kind));
  record.Text("OP", occupiedId).Text("FP", foresightId);
  return AddReading(record, reading, kFloatDecimals).Description(description).str();
}

// The first field follows a colon instead of a comma, and the description is not the last one.
std::string SetReadingComment(int number, bool direct, std::string_view foresightId,
                              const Reading& reading, std::string_view description,
                              double rodHeight) {
  RecordText fields("");
  fields.Text("FP", foresightId);
  std::string text = "\n--Reading ";
  AppendInteger(text, number);
  text += direct ? "(D):" : "(R):";
  text += AddReading(fields, reading, kPackedDecimals).str().substr(2);
  text += "--" + OneLine(description) + ",HR";
  AppendFixed(text, rodHeight, 3);
  return text;
}

std::string OffsetRecord(const Reading& reading) {
  RecordText record("OF");
  return AddReading(record, reading, kFloatDecimals).str();
}

std::string LaserOffsetRecord(double azimuthDegrees, double changeInElevation,
                              double horizontalDistance) {
  return RecordText("OF")
      .Angle("AZ", azimuthDegrees, 3)
      .Number("CE", changeInElevation, 4)
      .Number("HD", horizontalDistance, 4)
      .str();
}

}  // namespace tarvex
