// tarvex localize: ties a job to local control.
#include <algorithm>
#include <cmath>

#include "app/commands/command.h"
#include "app/commands/commands.h"
#include "app/coordinate_systems.h"
#include "app/job_localization.h"
#include "app/job_session.h"
#include "app/localization_text.h"
#include "app/raw_positions.h"
#include "core/number_text.h"
#include "core/point_id.h"
#include "core/point_list.h"
#include "core/point_store.h"
#include "core/raw_file.h"
#include "core/raw_records.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestRawFile = std::uint64_t{1} << 32U;
constexpr double kAbsurdScale_ppm = 10'000.0;  // feet for metres, another zone, a swapped axis
constexpr double kElsewhere_m = 100'000.0;     // points in other coordinates than the local ones

struct LocalizeOptions {
  std::string job;
  // Adding a point
  std::string gnss_id;
  std::vector<double> wgs84;
  std::string known_id;
  std::vector<double> local;
  std::string description;
  double hrms = 0.0;
  double vrms = 0.0;
  bool no_horizontal = false;
  bool no_vertical = false;
  // Changing the list
  std::vector<std::size_t> remove;
  std::vector<std::size_t> toggle_horizontal;
  std::vector<std::size_t> toggle_vertical;
  std::string from;
  // How to fit
  std::string method;
  std::optional<double> scale;
  std::string heights;
  bool off = false;
  bool on = false;
  bool list = false;
  bool json = false;

  bool adds() const {
    return !gnss_id.empty() || !wgs84.empty() || !known_id.empty() || !local.empty();
  }
  bool changes_list() const {
    return adds() || !remove.empty() || !toggle_horizontal.empty() || !toggle_vertical.empty() ||
           !from.empty();
  }
};

// One run of the command: the job, its list of control points, and what is to become of them.
class Localize {
 public:
  Localize(const LocalizeOptions& options, Program& program)
      : options_(options), program_(program), session_(program, options.job), systems_(program) {}

  ExitCode Run() {
    if (!session_.LoadExisting()) return ExitCode::Failed;
    if (!Open() || !Change()) return exit_code_;
    if (changed_ && !Save()) return exit_code_;
    return Report();
  }

 private:
  bool Fail(const std::string& sentence) {
    exit_code_ = program_.Fail(sentence);
    return false;
  }
  bool Misuse(const std::string& sentence) {
    exit_code_ = program_.Misuse(sentence);
    return false;
  }

  // The calculator without a localization, the settings and the list.
  bool Open() {
    Job& job = session_.job();
    std::string problem;
    if (!systems_.MakeCalculator(SystemOfSettings(session_.settings()), job.unit, calculator_,
                                 problem) ||
        !ReadJobLocalization(session_.settings(), job.path, localization_, problem)) {
      return Fail(problem);
    }
    if (localization_.path.empty()) localization_.path = PathWithExtension(job.path, "loc");
    if (!program_.files.Exists(localization_.path) || !options_.from.empty()) return true;
    if (LoadList(localization_.path, problem)) return true;
    // A list that cannot be read can still be switched off, and only that.
    if (!options_.off || options_.changes_list()) return Fail(problem);
    program_.console.PrintError("WARNING: " + problem + "\n");
    return true;
  }

  bool LoadList(const std::string& path, std::string& problem) {
    LocalizationFault fault;
    auto read = LoadLocalization(program_.files, path, session_.job().unit, fault);
    if (!read) {
      problem = fault.Text(path) + ".";
      return false;
    }
    list_ = std::move(read->points);
    for (const auto& [name, value] : read->settings) {
      program_.console.PrintError(path + " also holds the setting " + name + "=" + value +
                                  ", which is not used here.\n");
    }
    return true;
  }

  bool Change() {
    if (!options_.from.empty()) {
      std::string problem;
      if (!LoadList(options_.from, problem)) return Fail(problem);
      changed_ = true;
    }
    for (const std::size_t number : options_.toggle_horizontal) {
      if (!Toggle(number, &LocalizationPoint::use_horizontal)) return false;
    }
    for (const std::size_t number : options_.toggle_vertical) {
      if (!Toggle(number, &LocalizationPoint::use_vertical)) return false;
    }
    if (!Remove()) return false;
    if (options_.adds() && !Add()) return false;
    return ChangeMethod();
  }

  bool Toggle(std::size_t number, char LocalizationPoint::*flag) {
    if (!HasPoint(number)) return false;
    char& use = (*list_[number - 1]).*flag;
    use = use == 'Y' ? 'N' : 'Y';
    return changed_ = true;
  }

  bool HasPoint(std::size_t number) {
    if (number >= 1 && number <= list_.size()) return true;
    return Misuse("There is no control point " + std::to_string(number) + "; the list holds " +
                  std::to_string(list_.size()) + ".");
  }

  bool Remove() {
    std::vector<std::size_t> numbers = options_.remove;
    std::sort(numbers.rbegin(), numbers.rend());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    for (const std::size_t number : numbers) {
      if (!HasPoint(number)) return false;
      list_.erase(list_.begin() + static_cast<std::ptrdiff_t>(number - 1));
      changed_ = true;
    }
    return true;
  }

  bool Add() {
    LocalizationPoint point;
    if (!TakeGnss(point) || !TakeLocal(point)) return false;
    point.hrms = options_.hrms;
    point.vrms = options_.vrms;
    point.use_horizontal = options_.no_horizontal ? 'N' : 'Y';
    point.use_vertical = options_.no_vertical ? 'N' : 'Y';
    if (!options_.description.empty()) point.description = options_.description;
    list_.emplace_back(std::move(point));
    return changed_ = true;
  }

  bool TakeGnss(LocalizationPoint& point) {
    if (options_.wgs84.empty() == options_.gnss_id.empty()) {
      return Misuse("Give the GNSS position with --wgs84 LAT LON HEIGHT or --gnss ID.");
    }
    if (!options_.wgs84.empty()) {
      const double latitude = options_.wgs84[0];
      const double longitude = options_.wgs84[1];
      if (!(std::abs(latitude) <= 90.0 && std::abs(longitude) <= 360.0)) {
        return Misuse("--wgs84 takes latitude, longitude (decimal degrees) and height.");
      }
      point.gnss = {latitude * kRadiansPerDegree, longitude * kRadiansPerDegree, options_.wgs84[2]};
      return true;
    }
    const std::string path = RawFilePath(session_.job());
    std::string raw;
    const FileStatus status = ReadWholeFile(program_.files, path, kLargestRawFile, raw);
    if (!status.ok())
      return Fail("The raw file " + path + " cannot be read: " + status.Text() + ".");
    const auto found =
        FindRawPosition(raw, NormalisePointId(options_.gnss_id).view(), session_.job().unit);
    if (!found)
      return Fail("The raw file holds no GNSS position of point " + options_.gnss_id + ".");
    point.gnss = *found;
    point.description = options_.gnss_id;
    return true;
  }

  bool TakeLocal(LocalizationPoint& point) {
    if (options_.local.empty() == options_.known_id.empty()) {
      return Misuse("Give the local coordinates with --local N E EL or --known ID.");
    }
    GridPoint at;
    if (!options_.local.empty()) {
      at = {options_.local[0], options_.local[1], options_.local[2]};
    } else {
      const auto stream = OpenCoordinateFile(session_.job());
      Point known;
      if (!stream || ReadPoint(session_.job(), options_.known_id, stream.get(), known) !=
                         ReadPointResult::Found) {
        return Fail("There is no point " + options_.known_id + " in " + session_.job().path + ".");
      }
      at = known.at;
      point.description = known.id.str();
    }
    point.local_x = at.easting;
    point.local_y = at.northing;
    point.local_z = at.elevation;
    return true;
  }

  bool ChangeMethod() {
    const JobLocalization before = localization_;
    if (!options_.method.empty()) {
      localization_.method.horizontal = *ParseHorizontalMethod(options_.method);
    }
    if (!options_.heights.empty()) {
      localization_.method.vertical = *ParseVerticalMethod(options_.heights);
    }
    if (options_.scale) localization_.method.given_scale = *options_.scale;
    if (!(localization_.method.given_scale > 0.5 && localization_.method.given_scale < 2.0)) {
      return Misuse("A scale is a number near 1.");
    }
    if (changed_) localization_.on = true;  // unless the fit turns out to make no sense
    if (options_.on) localization_.on = true;
    if (options_.off) localization_.on = false;
    settings_changed_ =
        changed_ || before.on != localization_.on || !(before.method == localization_.method);
    return true;
  }

  bool Save() {
    if (SaveLocalization(program_.files, localization_.path, &list_, session_.job().unit) ==
        SaveLocalizationResult::Saved) {
      return true;
    }
    return Fail("The localization could not be written to " + localization_.path +
                "; nothing was changed.");
  }

  bool SaveSettings(const LocalizationReport& report) {
    PutJobLocalization(localization_, session_.job().path, session_.settings());
    if (!session_.Save()) {
      exit_code_ = ExitCode::Failed;
      return false;
    }
    const std::string state =
        localization_.on ? FittedLocalization(report.fit).Describe() : std::string("off");
    if (AppendRawRecord(session_.job(), CommentRecord("Localization: " + state)) ==
        RawFileResult::Written) {
      return true;
    }
    return Fail("The localization is kept, but the raw file " + RawFilePath(session_.job()) +
                " could not be written.");
  }

  // The points of the job on the grid, to see whether the control reaches them.
  std::vector<PlanePoint> JobPlaces(const LocalizationFit& fit) {
    std::vector<PlanePoint> places;
    PointList points;
    if (!fit.usable() || LoadAllPoints(session_.job(), points) != LoadPointsResult::Loaded) {
      return places;
    }
    const FittedLocalization step(fit);
    const PlaneSimilarity& centre = fit.horizontal.similarity;
    for (const Point& point : points) {
      const DistanceUnit unit = session_.job().unit;
      GridMetres at = {ToMetres(point.at.northing, unit), ToMetres(point.at.easting, unit), 0.0};
      (void)step.ToGrid(at);
      if (std::hypot(at.northing_m - centre.grid_northing_m, at.easting_m - centre.grid_easting_m) <
          kElsewhere_m) {
        places.push_back({at.northing_m, at.easting_m});
      }
    }
    return places;
  }

  ExitCode Report() {
    std::vector<UnusableControl> unusable;
    const ControlPoints points = ProjectControl(calculator_, list_, unusable);
    for (const UnusableControl& control : unusable) {
      (void)Fail("Control point " + std::to_string(control.position + 1) +
                 " has no grid coordinates: " + CalculationText(control.result));
    }
    const LocalizationFit fit = FitLocalization(points, localization_.method);
    const LocalizationReport report =
        ReportLocalization(points, localization_.method, JobPlaces(fit));
    const bool usable = fit.usable() && unusable.empty();
    absurd_ = std::abs(report.scale_ppm) > kAbsurdScale_ppm && !options_.on;
    if (!usable || (changed_ && absurd_)) localization_.on = false;
    if (settings_changed_ && !SaveSettings(report)) return exit_code_;
    if (options_.json) {
      PrintJson(report);
    } else {
      PrintText(report);
    }
    return exit_code_;
  }

  void PrintJson(const LocalizationReport& report) {
    Json json = LocalizationReportJson(report);
    json["control"] = ControlListJson(list_);
    json["unit"] = UnitKey(session_.job().unit);
    json["file"] = localization_.path;
    json["on"] = localization_.on;
    program_.console.Print(JsonText(json));
  }

  void PrintText(const LocalizationReport& report) {
    if (list_.empty() && options_.off) {
      program_.console.Print("The job does not use a localization.\n");
      return;
    }
    if (list_.empty()) {
      program_.console.Print(
          "The job has no control points; `tarvex localize --help` shows how to "
          "add them.\n");
      return;
    }
    if (options_.list) program_.console.Print(ControlListText(list_));
    program_.console.Print(localization_.path + ": residuals in " +
                           std::string(UnitName(session_.job().unit)) + ", local minus fitted\n" +
                           LocalizationReportText(report, session_.job().unit));
    if (!report.fit.usable()) {
      program_.console.Print("The localization cannot be used: " + FitProblem(report.fit) + ".\n");
    } else if (localization_.on) {
      program_.console.Print("The job uses the localization.\n");
    } else {
      program_.console.Print(absurd_
                                 ? "The job does not use it: the scale is no site's. (--on uses it "
                                   "all the same.)\n"
                                 : "The job does not use it (--on).\n");
    }
  }

  const LocalizeOptions& options_;
  Program& program_;
  JobSession session_;
  CoordinateSystems systems_;
  CTrgCalculator calculator_;
  JobLocalization localization_;
  LocalizationList list_;
  bool changed_ = false;
  bool settings_changed_ = false;
  bool absurd_ = false;
  ExitCode exit_code_ = ExitCode::Done;
};

ExitCode RunLocalize(const LocalizeOptions& options, Program& program) {
  return Localize(options, program).Run();
}

void AddPointOptions(CLI::App& sub, LocalizeOptions& options) {
  const std::string group = "Adding a control point";
  sub.add_option("--gnss", options.gnss_id,
                 "GNSS position: the last one of this point in the raw file")
      ->group(group);
  sub.add_option("--wgs84", options.wgs84,
                 "GNSS position: latitude, longitude (degrees), height (m)")
      ->expected(3)
      ->type_name("LAT LON HEIGHT")
      ->group(group);
  sub.add_option("--known", options.known_id, "Local coordinates: those of this point of the job")
      ->group(group);
  sub.add_option("--local", options.local, "Local coordinates in the job's unit")
      ->expected(3)
      ->type_name("N E EL")
      ->group(group);
  sub.add_option("--description", options.description, "Description (default: the point's id)")
      ->group(group);
  sub.add_option("--hrms", options.hrms, "Horizontal RMS of the GNSS position")->group(group);
  sub.add_option("--vrms", options.vrms, "Vertical RMS of the GNSS position")->group(group);
  sub.add_flag("--no-horizontal", options.no_horizontal, "The point takes no part horizontally")
      ->group(group);
  sub.add_flag("--no-vertical", options.no_vertical, "The point takes no part vertically")
      ->group(group);
}

void AddListOptions(CLI::App& sub, LocalizeOptions& options) {
  const std::string group = "Changing the list (points by their number in it)";
  sub.add_option("--toggle-horizontal", options.toggle_horizontal, "Use horizontally, or no more")
      ->group(group);
  sub.add_option("--toggle-vertical", options.toggle_vertical, "Use vertically, or no more")
      ->group(group);
  sub.add_option("--remove", options.remove, "Take points off the list")->group(group);
  sub.add_option("--from", options.from, "Take the whole list from another .loc file")
      ->group(group);
}

void AddFitOptions(CLI::App& sub, LocalizeOptions& options) {
  const std::string group = "Fitting";
  sub.add_option("--method", options.method,
                 "similarity (scale, rotation, translation), fixed-scale, rotation (scale 1) or "
                 "translation")
      ->check(CLI::IsMember({"similarity", "fixed-scale", "rotation", "translation"}))
      ->group(group);
  sub.add_option("--scale", options.scale, "The scale for fixed-scale and translation")
      ->group(group);
  sub.add_option("--heights", options.heights, "shift, or an inclined plane")
      ->check(CLI::IsMember({"shift", "plane"}))
      ->group(group);
  auto* off = sub.add_flag("--off", options.off, "The job no longer uses the localization");
  off->group(group);
  sub.add_flag("--on", options.on, "The job uses it again")->excludes(off)->group(group);
}

}  // namespace

void AddLocalizeCommand(CLI::App& app, Program& program) {
  Command<LocalizeOptions> command(app, program, "localize",
                                   "Tie a job to local control points and report the fit",
                                   RunLocalize);
  CLI::App& sub = command.sub;
  sub.footer(
      "Without options the list is fitted and reported. A changed list is kept in the job's .loc\n"
      "file and used from then on: collected points come out in local coordinates.\n"
      "Example: tarvex localize site.crd --gnss 101 --known BM1\n"
      "         tarvex localize site.crd --wgs84 47.1 8.2 520.3 --local 1000 5000 471.2\n"
      "         tarvex localize site.crd --toggle-horizontal 3 --heights plane");
  sub.add_option("JOB.crd", command.options->job, "The job's coordinate file")->required();
  AddPointOptions(sub, *command.options);
  AddListOptions(sub, *command.options);
  AddFitOptions(sub, *command.options);
  sub.add_flag("--list", command.options->list, "Print the control points with their coordinates");
  sub.add_flag("--json", command.options->json, "Print JSON (residuals in metres)");
}

}  // namespace tarvex
