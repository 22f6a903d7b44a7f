// tarvex localize: ties a job to local control.
#include <algorithm>
#include <cmath>

#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/commands/localize_options.h"
#include "app/cli/localization_text.h"
#include "app/workflow/control_point_source.h"
#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_localization.h"
#include "app/workflow/job_session.h"
#include "core/point_list.h"
#include "core/raw_file.h"
#include "core/raw_records.h"

namespace tarvex {
namespace {

constexpr double kAbsurdScale_ppm = 10'000.0;  // feet for metres, another zone, a swapped axis
constexpr double kElsewhere_m = 100'000.0;     // points in other coordinates than the local ones

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
    exit_code_ = ReadControlPoint(options_, session_.job(), program_, point);
    if (exit_code_ != ExitCode::Done) return false;
    list_.emplace_back(std::move(point));
    return changed_ = true;
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
  AddLocalizeOptions(sub, *command.options);
  sub.add_flag("--list", command.options->list, "Print the control points with their coordinates");
  sub.add_flag("--json", command.options->json, "Print JSON (residuals in metres)");
}

}  // namespace tarvex
