#include "coordsys/localization/localization_file.h"

#include <cmath>

#include "coordsys/coordsys_texts.h"
#include "core/codec/xml_reader.h"
#include "core/codec/xml_writer.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

constexpr std::string_view kRootName = "Localization Points";
constexpr std::string_view kUnits = "WGS84, Decimal Degrees, Metric";
constexpr std::string_view kNumberType = "double";
constexpr int kDecimals = 13;
constexpr std::uint64_t kLargestFile = 64u << 20;

XmlValue Text(std::string name, std::string text) {
  return {.name = std::move(name), .type = std::nullopt, .value = std::move(text)};
}

XmlValue Number(std::string name, double number) {
  return {
      .name = std::move(name), .type = std::string(kNumberType), .value = ShortestNumber(number)};
}

XmlRecord PointRecord(const LocalizationPoint& point, std::size_t position, DistanceUnit unit) {
  const auto fixed = [](double value) { return FixedNumber(value, kDecimals); };
  XmlRecord record;
  record.name = "Point " + std::to_string(position);
  record.values = {
      Text("Lat", fixed(point.gnss.latitudeRad * kDegreesPerRadian)),
      Text("Lon", fixed(point.gnss.longitudeRad * kDegreesPerRadian)),
      Text("Ellipsoid_Elv", fixed(point.gnss.heightM)),
      Text("Local_X", fixed(ToMetres(point.localX, unit))),
      Text("Local_Y", fixed(ToMetres(point.localY, unit))),
      Text("Local_Z", fixed(ToMetres(point.localZ, unit))),
      Number("HRMS", point.hrms),
      Number("VRMS", point.vrms),
      Text("Use_Horizontal", point.useHorizontal == 'Y' ? "Yes" : "No"),
      Text("Use_Vertical", point.useVertical == 'Y' ? "Yes" : "No"),
      Text("Description", point.description),
  };
  return record;
}

bool IsWritable(const LocalizationPoint& point) {
  for (const double value : {point.gnss.latitudeRad, point.gnss.longitudeRad, point.gnss.heightM,
                             point.localX, point.localY, point.localZ, point.hrms, point.vrms}) {
    if (!std::isfinite(value)) return false;
  }
  return true;
}

// Takes the values of a point's record, with the first thing wrong as the fault.
class PointReader {
 public:
  PointReader(const XmlRecord& record, LocalizationFault& fault) : record_(record), fault_(fault) {}

  // A number that must be there, of at most `limit`.
  double Needed(std::string_view name, double limit) {
    const XmlValue* const value = record_.Find(name);
    if (value == nullptr || !value->value) {
      Fail(value == nullptr ? record_.line : value->line, kTextPointValueMissing, name, "");
      return 0.0;
    }
    const auto number = ParseNumber(*value->value);
    if (!number || std::abs(*number) > limit) {
      Fail(value->line, number ? kTextPointValueOutOfRange : kTextPointValueUnreadable, name,
           *value->value);
      return 0.0;
    }
    return *number;
  }

  double Optional(std::string_view name) {
    return record_.Find(name) == nullptr ? 0.0 : Needed(name, 1e9);
  }

  char Flag(std::string_view name) {
    const std::string text = Text(name);
    if (text == "Yes") return 'Y';
    if (text != "No") Fail(record_.line, kTextPointValueUnreadable, name, text);
    return 'N';
  }

  std::string Text(std::string_view name) const {
    const XmlValue* const value = record_.Find(name);
    return value == nullptr ? std::string() : value->value.value_or("");
  }

 private:
  void Fail(int line, int text, std::string_view name, std::string_view value) {
    if (fault_.text.empty()) fault_ = {line, Strings().Text(text, {name, value})};
  }

  const XmlRecord& record_;
  LocalizationFault& fault_;
};

LocalizationPoint ReadPoint(const XmlRecord& record, DistanceUnit unit, LocalizationFault& fault) {
  constexpr double kFarthest = 1e9;
  PointReader reader(record, fault);
  LocalizationPoint point;
  point.gnss.latitudeRad = reader.Needed("Lat", 90.0) * kRadiansPerDegree;
  point.gnss.longitudeRad = reader.Needed("Lon", 360.0) * kRadiansPerDegree;
  point.gnss.heightM = reader.Needed("Ellipsoid_Elv", kFarthest);
  point.localX = FromMetres(reader.Needed("Local_X", kFarthest), unit);
  point.localY = FromMetres(reader.Needed("Local_Y", kFarthest), unit);
  point.localZ = FromMetres(reader.Needed("Local_Z", kFarthest), unit);
  point.hrms = reader.Optional("HRMS");
  point.vrms = reader.Optional("VRMS");
  point.useHorizontal = reader.Flag("Use_Horizontal");
  point.useVertical = reader.Flag("Use_Vertical");
  point.description = reader.Text("Description");
  return point;
}

}  // namespace

std::string LocalizationFault::Text(const std::string& path) const {
  if (line == 0) return path + ": " + text;
  return path + ", line " + std::to_string(line) + ": " + text;
}

std::string LocalizationText(const LocalizationList& list, DistanceUnit unit) {
  XmlRecord root;
  root.name = kRootName;
  root.values.push_back(Text("Units", std::string(kUnits)));
  for (const auto& point : list) {
    if (!point) break;
    root.children.push_back(PointRecord(*point, root.children.size() + 1, unit));
  }
  return WriteXmlRecord(root);
}

SaveLocalizationResult SaveLocalization(FileSystem& files, const std::string& path,
                                        const LocalizationList* list, DistanceUnit unit) {
  if (list == nullptr) return SaveLocalizationResult::NothingWritten;
  for (const auto& point : *list) {
    if (!point) break;
    if (!IsWritable(*point)) return SaveLocalizationResult::NothingWritten;
  }
  const FileStatus status = ReplaceWholeFile(files, path, LocalizationText(*list, unit));
  return status.ok() ? SaveLocalizationResult::Saved : SaveLocalizationResult::NothingWritten;
}

std::optional<ReadLocalization> ParseLocalization(std::string_view document, DistanceUnit unit,
                                                  LocalizationFault& fault) {
  fault = {};
  XmlFault xmlFault;
  const auto root = ReadXmlRecord(document, xmlFault);
  if (!root) {
    fault = {xmlFault.line, Strings().Text(kTextNotALocalizationFile, {xmlFault.text})};
    return std::nullopt;
  }
  const XmlValue* const units = root->Find("Units");
  if (root->name != kRootName || units == nullptr || units->value != kUnits) {
    fault = {root->line, Strings().Text(kTextNoLocalizationRecord, {kRootName, kUnits})};
    return std::nullopt;
  }
  ReadLocalization read;
  for (const XmlRecord& record : root->children) {
    read.points.emplace_back(ReadPoint(record, unit, fault));
    if (!fault.text.empty()) return std::nullopt;
  }
  for (const XmlValue& value : root->values) {
    if (value.name != "Units") read.settings.emplace_back(value.name, value.value.value_or(""));
  }
  return read;
}

std::optional<ReadLocalization> LoadLocalization(FileSystem& files, const std::string& path,
                                                 DistanceUnit unit, LocalizationFault& fault) {
  std::string document;
  if (FileStatus status = ReadWholeFile(files, path, kLargestFile, document); !status.ok()) {
    fault = {0, Strings().Text(kTextLocalizationUnreadable, {status.Text()})};
    return std::nullopt;
  }
  return ParseLocalization(document, unit, fault);
}

}  // namespace tarvex
