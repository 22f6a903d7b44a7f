#include "core/raw_data/raw_comments.h"

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/angle.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;

// "\n--", then texts and numbers in turn.
class Comment {
 public:
  explicit Comment(std::string_view text) : text_("\n--") { text_ += text; }
  Comment& Number(double value, int decimals) {
    AppendFixed(text_, value, decimals);
    return *this;
  }
  Comment& Text(std::string_view text) {
    text_ += OneLine(text);
    return *this;
  }
  std::string str() const { return text_; }

 private:
  std::string text_;
};

}  // namespace

std::string AngleRmsComment(double seconds) {
  return Comment("Ang RMS(Sec):").Number(seconds, kDecimals).str();
}

std::string DistanceRmsComment(double rms) {
  return Comment("Dist RMS:").Number(rms, kDecimals).str();
}

std::string ElevationRmsComment(double rms) {
  return Comment("Elev RMS:").Number(rms, kDecimals).str();
}

std::string StandardDeviationComment(double northing, double easting) {
  return Comment("StDev:N").Number(northing, kDecimals).Text(",E").Number(easting, kDecimals).str();
}

std::string ClosureComment(double ratio) {
  return Comment("Closure:").Number(ratio, 0).str();
}

std::string BacksightWarning(double difference, std::string_view unit) {
  return Comment("Warning: Distances to backsight differ by ")
      .Number(difference, 3)
      .Text(unit)
      .Text(".")
      .str();
}

std::string WarningComment(std::string_view text) {
  return Comment("Warning: ").Text(text).str();
}

std::string RotationComment(double northing, double easting, double angleDegrees) {
  return Comment("Rotated around N")
      .Number(northing, kDecimals)
      .Text(",E")
      .Number(easting, kDecimals)
      .Text(" by ")
      .Text(PackedField(angleDegrees, kDecimals))
      .str();
}

std::string TranslationComment(const GridPoint& shift) {
  return Comment("Translate: dy=")
      .Number(shift.northing, kDecimals)
      .Text(", dx=")
      .Number(shift.easting, kDecimals)
      .Text(", dz=")
      .Number(shift.elevation, kDecimals)
      .str();
}

std::string ScaleComment(double northing, double easting, double factor) {
  return Comment("Scaled from base N")
      .Number(northing, kDecimals)
      .Text(",E")
      .Number(easting, kDecimals)
      .Text(" by a factor of ")
      .Number(factor, 10)
      .str();
}

}  // namespace tarvex
