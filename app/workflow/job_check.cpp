#include "app/workflow/job_check.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "app/workflow/job_settings.h"
#include "app/workflow/raw_history.h"
#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/coordinate_layout.h"
#include "core/coordinates/point_list.h"
#include "core/journal/change_journal.h"
#include "core/observations/point_notes.h"
#include "core/points/point_id.h"
#include "core/raw_data/raw_file.h"
#include "core/raw_data/raw_header.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "platform/file_bytes.h"

namespace tarvex {
namespace {

using Last = PointHistory::Last;

constexpr std::string_view kBlockStart = "PT_ID:";
constexpr std::array<std::string_view, 3> kQualityStarts = {"HRMS,", "HQ,", "STATUS,"};

// True when `text` is `value` as it is printed with the decimals that the text has.
bool IsPrintedAs(std::string_view text, double value) {
  const std::size_t point = text.find('.');
  const std::size_t decimals = point == std::string_view::npos ? 0 : text.size() - point - 1;
  std::string printed;
  AppendFixed(printed, value, static_cast<int>(std::min<std::size_t>(decimals, 12)));
  return printed == text;
}

bool AgreesWith(const PointHistory& history, const GridPoint& at) {
  return IsPrintedAs(history.coordinates[0], at.northing) &&
         IsPrintedAs(history.coordinates[1], at.easting) &&
         IsPrintedAs(history.coordinates[2], at.elevation);
}

class Checker {
 public:
  Checker(Job& job, const Settings& settings) : job_(job), settings_(settings) {}

  std::optional<JobCheck> Run() {
    CheckLeftovers();
    if (!CheckFrame() || !LoadPoints() || !LoadText(RawFilePath(job_), raw_, &rawThere_) ||
        !LoadText(PointNotesPath(job_), notes_)) {
      return std::nullopt;
    }
    CheckSettings();
    CheckRecordOrder();
    history_ = ReadRawHistory(raw_.view(), job_.store.alphanumeric);
    check_.rawRecords = history_.records;
    CheckRawHeader();
    CheckBrokenRecords();
    CheckNotes();
    if (rawThere_) CheckPoints();
    if (rawThere_) CheckStoredPoints();
    const auto byKind = [](const JobFinding& a, const JobFinding& b) { return a.fault < b.fault; };
    std::stable_sort(check_.findings.begin(), check_.findings.end(), byKind);
    return std::move(check_);
  }

 private:
  void Add(JobFinding finding) { check_.findings.push_back(std::move(finding)); }

  // What opening the job did not take away.
  void CheckLeftovers() {
    FileSystem& files = job_.host.files();
    const std::string settings = PathWithExtension(job_.path, "job");
    std::vector<std::string> left{job_.path + ".tmp", PointNotesPath(job_) + ".tmp",
                                  settings + ".tmp"};
    left.push_back(job_.path + ".new");
    for (const std::string& path : left) {
      if (files.Exists(path)) Add({.fault = JobFault::FileLeft, .arguments = {path}});
    }
  }

  bool CheckFrame() {
    const auto stream = OpenForReading(job_);
    if (!stream) return false;
    if (stream->trailingBytes() > 0) {
      Add({.fault = JobFault::TrailingBytes,
           .arguments = {std::to_string(stream->trailingBytes())}});
    }
    if (!job_.store.alphanumeric) CheckCount(*stream);
    return true;
  }

  bool LoadPoints() { return LoadAllPoints(job_, points_) == LoadPointsResult::Loaded; }

  void CheckCount(CoordinateFile& stream) {
    std::string header(numeric_layout::kRecordSize, '\0');
    std::size_t got = 0;
    if (!stream.ReadBytes(0, header, got).ok() || got < header.size()) return;
    const long long count = numeric_layout::DecodeHighestNumber(header);
    if (count == static_cast<long long>(stream.recordCount())) return;
    Add({.fault = JobFault::CountContradicts,
         .arguments = {std::to_string(count), std::to_string(stream.recordCount())}});
  }

  bool LoadText(const std::string& path, FileBytes& bytes, bool* there = nullptr) {
    const FileStatus status = LoadFileBytes(job_.host.files(), path, bytes);
    if (there != nullptr) *there = status.ok();
    if (status.ok() || status.notFound()) return true;
    job_.host.ShowMessage(path + " cannot be read: " + status.Text() + ".");
    return false;
  }

  void CheckSettings() {
    if (!job_.host.files().Exists(PathWithExtension(job_.path, "job"))) {
      Add({.fault = JobFault::SettingsMissing});
    }
    for (std::string& sentence : UnknownSettings(settings_)) {
      Add({.fault = JobFault::SettingUnused, .arguments = {std::move(sentence)}});
    }
  }

  // The order of the file; ids with needless zeros, which have none, are left out.
  void CheckRecordOrder() {
    check_.points = points_.size();
    if (!job_.store.alphanumeric) return;
    for (std::size_t i = 1; i < points_.size(); ++i) {
      const std::string_view before = points_[i - 1].id.view();
      const std::string_view id = points_[i].id.view();
      const int order = ComparePointIds(before, id);
      if (order < 0 || !MakePointIdKey(before) || !MakePointIdKey(id)) continue;
      if (order == 0) {
        Add({.fault = JobFault::IdTwice, .pointId = std::string(id)});
      } else {
        Add({.fault = JobFault::OutOfOrder,
             .pointId = std::string(id),
             .arguments = {std::string(before)}});
      }
    }
  }

  void CheckRawHeader() {
    if (!rawThere_) {
      Add({.fault = JobFault::RawFileMissing});
      return;
    }
    if (const auto mode = ParseRawMode(raw_.view())) {
      if (mode->unit && *mode->unit != job_.options.unit) {
        Add({.fault = JobFault::UnitContradicts,
             .arguments = {std::string(UnitName(job_.options.unit)),
                           std::string(UnitName(*mode->unit))}});
      }
      const auto direction = [](bool south) { return std::string(south ? "south" : "north"); };
      const auto& south = mode->azimuthsFromSouth;
      if (south && *south != job_.options.azimuthsFromSouth) {
        Add({.fault = JobFault::AzimuthsContradict,
             .arguments = {direction(job_.options.azimuthsFromSouth), direction(*south)}});
      }
    }
    const std::string layout(job_.store.layoutName());
    if (!history_.layout.empty() && history_.layout != layout) {
      Add({.fault = JobFault::LayoutContradicts,
           .arguments = {layout, std::string(history_.layout)}});
    }
  }

  void CheckBrokenRecords() {
    for (const BrokenRecord& record : history_.broken) {
      Add({.fault = JobFault::RecordBroken,
           .line = record.line,
           .arguments = {OneLine(record.text)}});
    }
  }

  struct Note {
    std::size_t line = 0;
    bool quality = false;
  };

  void CheckNotes() {
    std::string_view rest = notes_.view();
    Note* note = nullptr;
    for (std::size_t number = 1; const auto line = TakeLine(rest); ++number) {
      if (line->starts_with(kBlockStart)) {
        note = TakeNote(line->substr(kBlockStart.size()), number);
      } else if (note != nullptr) {
        const auto begins = [&line](std::string_view start) { return line->starts_with(start); };
        note->quality =
            note->quality || std::any_of(kQualityStarts.begin(), kQualityStarts.end(), begins);
      }
    }
  }

  Note* TakeNote(std::string_view id, std::size_t line) {
    const auto [note, isNew] =
        noteOf_.emplace(HistoryKey(id, job_.store.alphanumeric), Note{.line = line});
    if (isNew) {
      ++check_.notes;
    } else {
      Add({.fault = JobFault::NoteTwice, .pointId = std::string(id), .line = line});
    }
    return &note->second;
  }

  void CheckPoints() {
    for (const Point& point : points_) {
      const PointId key = HistoryKey(point.id.view(), job_.store.alphanumeric);
      const auto found = history_.points.find(key);
      const auto note = noteOf_.find(key);
      const bool quality = note != noteOf_.end() && note->second.quality;
      if (found == history_.points.end()) {
        Add({.fault = JobFault::NoObservation, .pointId = point.id.str()});
      } else {
        CheckPoint(point, found->second, quality, quality ? note->second.line : 0);
      }
    }
  }

  void CheckPoint(const Point& point, const PointHistory& history, bool quality,
                  std::size_t noteLine) {
    const std::string id = point.id.str();
    if (history.last == Last::Deleted) {
      Add({.fault = JobFault::StillThere, .pointId = id, .line = history.line});
    }
    if (history.hasCoordinates && !AgreesWith(history, point.at)) {
      JobFinding finding{.fault = JobFault::CoordinatesDiffer, .pointId = id, .line = history.line};
      for (const double value : {point.at.northing, point.at.easting, point.at.elevation}) {
        finding.arguments.push_back(FixedNumber(value, 4));
      }
      for (const std::string_view text : history.coordinates) finding.arguments.emplace_back(text);
      Add(std::move(finding));
    }
    if (history.last == Last::Typed && quality) {
      Add({.fault = JobFault::QualityOnTyped, .pointId = id, .line = noteLine});
    }
    if (history.last == Last::Position && !quality) {
      Add({.fault = JobFault::QualityMissing, .pointId = id});
    }
  }

  // The other way round: what the raw file and the notes know and the coordinate file does not.
  void CheckStoredPoints() {
    std::unordered_map<PointId, bool, PointIdHash> there;
    there.reserve(points_.size());
    for (const Point& point : points_)
      there[HistoryKey(point.id.view(), job_.store.alphanumeric)] = true;
    std::vector<JobFinding> missing;
    for (const auto& [id, history] : history_.points) {
      if (history.last == Last::Deleted || there.contains(id)) continue;
      missing.push_back(
          {.fault = JobFault::NoCoordinates, .pointId = id.str(), .line = history.line});
    }
    for (const auto& [id, note] : noteOf_) {
      if (there.contains(id) || history_.points.contains(id)) continue;
      missing.push_back(
          {.fault = JobFault::NoteWithoutPoint, .pointId = id.str(), .line = note.line});
    }
    const auto byLine = [](const JobFinding& a, const JobFinding& b) { return a.line < b.line; };
    std::sort(missing.begin(), missing.end(), byLine);
    for (JobFinding& finding : missing) Add(std::move(finding));
  }

  Job& job_;
  const Settings& settings_;
  JobCheck check_;
  PointList points_;
  FileBytes raw_;
  FileBytes notes_;
  bool rawThere_ = false;
  RawHistory history_;
  std::unordered_map<PointId, Note, PointIdHash> noteOf_;
};

}  // namespace

std::optional<JobCheck> CheckJob(Job& job, const Settings& settings) {
  return Checker(job, settings).Run();
}

}  // namespace tarvex
