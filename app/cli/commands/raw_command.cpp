// tarvex raw: the raw data file of a job.
#include <algorithm>
#include <iterator>
#include <utility>

#include "app/cli/command_line.h"
#include "app/cli/json_text.h"
#include "app/workflow/job_session.h"
#include "core/raw_data/raw_fields.h"
#include "core/raw_data/raw_file.h"
#include "core/text/field_cursor.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/angle.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestRawFile = std::uint64_t{1} << 32U;

struct RawOptions {
  std::string job;
  bool json = false;
};

// The numbers of a record are of these kinds; angles are packed in the file.
enum class FieldKind { Text, Number, Angle };

struct FieldName {
  std::string_view tag;
  const char* name;
  FieldKind kind;
};

constexpr FieldName kFieldNames[] = {
    {"NM", "name", FieldKind::Text},
    {"DT", "date", FieldKind::Text},
    {"TM", "time", FieldKind::Text},
    {"AD", "azimuths_from_south", FieldKind::Number},
    {"UN", "unit", FieldKind::Number},
    {"SF", "scale_factor", FieldKind::Number},
    {"EC", "curvature_correction", FieldKind::Number},
    {"EO", "edm_offset", FieldKind::Number},
    {"AU", "angle_unit", FieldKind::Number},
    {"PN", "point", FieldKind::Text},
    {"OP", "occupied_point", FieldKind::Text},
    {"BP", "backsight_point", FieldKind::Text},
    {"FP", "foresight_point", FieldKind::Text},
    {"N ", "northing", FieldKind::Number},
    {"E ", "easting", FieldKind::Number},
    {"EL", "elevation", FieldKind::Number},
    {"HI", "instrument_height", FieldKind::Number},
    {"HR", "rod_height", FieldKind::Number},
    {"BS", "backsight_azimuth", FieldKind::Angle},
    {"BC", "backsight_circle", FieldKind::Angle},
    {"LA", "latitude", FieldKind::Angle},
    {"LN", "longitude", FieldKind::Angle},
    {"AR", "angle_right", FieldKind::Angle},
    {"AL", "angle_left", FieldKind::Angle},
    {"AZ", "azimuth", FieldKind::Angle},
    {"BR", "bearing", FieldKind::Text},
    {"ZE", "zenith_angle", FieldKind::Angle},
    {"VA", "vertical_angle", FieldKind::Angle},
    {"CE", "elevation_difference", FieldKind::Number},
    {"SD", "slope_distance", FieldKind::Number},
    {"HD", "horizontal_distance", FieldKind::Number},
};

// What is no number where one belongs stays the text that it is.
Json FieldJson(FieldKind kind, std::string_view text) {
  const auto number = kind == FieldKind::Text ? std::nullopt : ParseNumber(text);
  if (!number) return text;
  return kind == FieldKind::Angle ? PackedToDegrees(*number) : *number;
}

// The fields of a record by their names; one without a name is known by its tag.
Json FieldsJson(std::string_view record) {
  Json json = Json::EmptyObject();
  const std::size_t behind = record.find(",--");
  const bool positioned = RawCode(record) == "GPS" || RawCode(record) == "BP";
  FieldCursor fields(record.substr(0, behind));
  std::string_view field;
  (void)fields.Take(field);  // the code
  while (fields.Take(field)) {
    constexpr std::size_t kTag = 2;
    if (field.size() < kTag) continue;
    const std::string_view tag = field.substr(0, kTag);
    const auto* known = std::find_if(std::begin(kFieldNames), std::end(kFieldNames),
                                     [tag](const FieldName& name) { return name.tag == tag; });
    if (known == std::end(kFieldNames)) {
      json[tag] = field.substr(kTag);
    } else {
      json[positioned && tag == "EL" ? "height" : known->name] =
          FieldJson(known->kind, field.substr(kTag));
    }
  }
  if (behind != std::string_view::npos) json["description"] = record.substr(behind + 3);
  return json;
}

// Each record is on a line of its own, so that line tools can be used on it as well.
std::string RawJson(const std::string& path, std::string_view bytes) {
  std::string text = "{\"raw\": " + JsonLine(path) + ",\n\"records\": [";
  bool first = true;
  while (const auto line = TakeLine(bytes)) {
    const bool comment = line->starts_with("--");
    text += std::exchange(first, false) ? "\n" : ",\n";
    Json record = {{"record", comment ? "--" : RawCode(*line)}, {"text", *line}};
    if (!comment) record["fields"] = FieldsJson(*line);
    text += JsonLine(record);
  }
  return text + "\n]}\n";
}

ExitCode RunRaw(const RawOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  const std::string path = RawFilePath(session.job());
  std::string bytes;
  const FileStatus status = ReadWholeFile(program.files, path, kLargestRawFile, bytes);
  if (!status.ok())
    return program.Fail("The raw file " + path + " cannot be read: " + status.Text() + ".");
  if (!options.json) {
    program.console.PrintBytes(bytes + "\n");
    return ExitCode::Done;
  }
  program.console.Print(RawJson(path, bytes));
  return ExitCode::Done;
}

}  // namespace

void DeclareRawCommand(Command& command) {
  RawOptions& options = command.Runs(RunRaw);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.AddFlag("--json", options.json, "Print JSON, each record on a line of its own");
  command.Footer(
      "Every setup, observation, stored and deleted point and comment, oldest first.\n"
      "Example: tarvex raw site.crd");
}

}  // namespace tarvex
