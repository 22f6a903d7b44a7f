// tarvex points: the points of a job.
#include "app/cli/command_line.h"
#include "app/cli/json_text.h"
#include "app/cli/table_text.h"
#include "app/workflow/job_session.h"
#include "app/workflow/point_frames.h"
#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/point_list.h"
#include "core/raw_data/raw_file.h"
#include "core/text/number_text.h"
#include "platform/file_bytes.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;
constexpr std::size_t kNumberWidth = 16;
constexpr std::size_t kIdWidth = 10;

struct PointsOptions {
  std::string job;
  bool json = false;
};

// The points that the localization or the system of before has made.
PointIdSet PointsOfBefore(Job& job) {
  FileBytes raw;
  if (!LoadFileBytes(job.host.files(), RawFilePath(job), raw).ok()) return {};
  return PointsOfEarlierFrames(raw.view(), job.store.alphanumeric);
}

std::string Row(const Point& point, bool ofBefore) {
  std::string row = Left(point.id.str() + (ofBefore ? " *" : ""), kIdWidth);
  for (const double value : {point.at.northing, point.at.easting, point.at.elevation}) {
    row += Right(FixedNumber(value, kDecimals), kNumberWidth);
  }
  if (!point.description.empty()) row += "  " + OneLine(point.description.view());
  return row + "\n";
}

void PrintTable(Job& job, const PointList& points, Program& program) {
  if (points.empty()) {
    program.console.Print("The job holds no points.\n");
    return;
  }
  program.console.Print(Left("Point", kIdWidth) + Right("Northing", kNumberWidth) +
                        Right("Easting", kNumberWidth) + Right("Elevation", kNumberWidth) +
                        "  Description\n");
  const PointIdSet before = PointsOfBefore(job);
  for (const Point& point : points) {
    program.console.Print(Row(point, before.contains(point.id)));
  }
  program.console.Print(std::to_string(points.size()) +
                        (points.size() == 1 ? " point, " : " points, ") +
                        std::string(UnitName(job.options.unit)) + "\n");
  if (before.empty()) return;
  program.console.Print(
      "* stored before the localization or the coordinate system was changed: `tarvex recompute " +
      job.path + "` computes it anew.\n");
}

void PrintJson(Job& job, const PointList& points, Program& program) {
  Json list = Json::EmptyList();
  const PointIdSet before = PointsOfBefore(job);
  for (const Point& point : points) {
    Json json = PointJson(point);
    if (before.contains(point.id)) json["before_change"] = true;
    list.Add(std::move(json));
  }
  program.console.Print(JsonText({{"job", job.path},
                                  {"alphanumeric", job.store.alphanumeric},
                                  {"unit", UnitKey(job.options.unit)},
                                  {"points", std::move(list)}}));
}

// What a file cut short or left by an interrupted store holds besides its points.
void WarnAboutRemains(Job& job, Program& program) {
  const auto file = OpenForReading(job);
  if (!file) return;
  if (file->trailingBytes() > 0) {
    program.Warn(job.path + " ends in the middle of a record: its last " +
                 std::to_string(file->trailingBytes()) + " bytes are no point.");
  }
  const auto last = static_cast<std::uint64_t>(job.store.lastPointNumber);
  if (!job.store.alphanumeric && file->recordCount() > last) {
    program.Warn(job.path + " has records up to number " + std::to_string(file->recordCount()) +
                 ", but its header counts to " + std::to_string(last) +
                 ": those behind are listed, but not found by their number.");
  }
}

ExitCode RunPoints(const PointsOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  PointList points;
  const auto progress = [&](std::string_view text) {
    program.console.ShowProgress("Loading" + std::string(" ") + std::string(text.substr(1)));
  };
  const LoadPointsResult result = LoadAllPoints(session.job(), points, nullptr, progress);
  program.console.EndProgress();
  if (result == LoadPointsResult::OutOfMemory)
    return program.Fail("There is not enough memory for the points of " + options.job + ".");
  if (result != LoadPointsResult::Loaded) return ExitCode::Failed;
  WarnAboutRemains(session.job(), program);
  if (options.json) {
    PrintJson(session.job(), points, program);
  } else {
    PrintTable(session.job(), points, program);
  }
  return ExitCode::Done;
}

}  // namespace

void DeclarePointsCommand(Command& command) {
  PointsOptions& options = command.Runs(RunPoints);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.AddFlag("--json", options.json, "Print JSON, coordinates in full");
  command.Footer("Points come in the order of their ids. Example: tarvex points site.crd");
}

}  // namespace tarvex
