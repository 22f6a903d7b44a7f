// tarvex localize: ties a job to local control.
#include <algorithm>
#include <cmath>

#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/commands/localize_options.h"
#include "app/cli/localization_text.h"
#include "app/workflow/control_fit.h"
#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_localization.h"
#include "app/workflow/job_session.h"
#include "app/workflow/stored_coordinates.h"
#include "core/number_text.h"
#include "core/point_list.h"
#include "core/printable.h"
#include "core/raw_file.h"
#include "core/raw_records.h"

namespace tarvex {
namespace {

constexpr double kElsewhere_m = 100'000.0;  // points in other coordinates than the local ones

// One run of the command: the job, its list of control points, and what is to become of them.
class Localize {
 public:
  Localize(const LocalizeOptions& options, Program& program)
      : options_(options), program_(program), session_(program, options.job), systems_(program) {}

  ExitCode Run() {
    if (!session_.LoadExisting() || !Open()) return exit_code_;
    const bool worked = localization_.on && FitProblem(Fit()).empty();
    if (!Change()) return exit_code_;
    control_ = Fit();
    report_ = ReportLocalization(control_.points, localization_.method, JobPlaces(control_.fit),
                                 session_.job().unit);
    Judge(worked);
    if (refused_) {
      Print("The fit that was refused");
      return exit_code_;
    }
    if (changed_ && !Save()) return exit_code_;
    if (IsChanged() && !SaveSettings()) return exit_code_;
    Print(localization_.path);
    if (IsChanged()) WarnOfStoredPoints();
    return exit_code_;
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
    exit_code_ = ExitCode::Done;
    Job& job = session_.job();
    std::string problem;
    if (!systems_.MakeCalculator(SystemOfSettings(session_.settings()), job.unit, calculator_,
                                 problem) ||
        !ReadJobLocalization(session_.settings(), job.path, localization_, problem)) {
      return Fail(problem);
    }
    if (localization_.path.empty()) localization_.path = PathWithExtension(job.path, "loc");
    before_ = localization_;
    const bool expected = localization_.on || program_.files.Exists(localization_.path);
    if (!expected || !options_.from.empty() || LoadList(localization_.path, problem)) return true;
    // A list that cannot be read can still be switched off, and only that.
    if (!options_.off || options_.changes_list()) return Fail(problem);
    program_.Warn(problem);
    return true;
  }

  bool LoadList(const std::string& path, std::string& problem) {
    LocalizationFault fault;
    auto read = LoadLocalization(program_.files, path, session_.job().unit, fault);
    if (!read) {
      problem = PrintableLine(fault.Text(path)) + ".";
      return false;
    }
    list_ = std::move(read->points);
    for (const auto& [name, value] : read->settings) {
      program_.console.PrintError(
          PrintableLine(path + " also holds the setting " + name + "=" + value) +
          ", which is not used here.\n");
    }
    return true;
  }

  ControlFit Fit() const { return FitControl(calculator_, list_, localization_.method); }

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
    ControlPointSource source;
    std::string problem;
    if (!TakeControlPointSource(options_, source, problem)) return Misuse(problem);
    LocalizationPoint point;
    if (!ReadControlPoint(source, session_.job(), point, problem)) return Fail(problem);
    list_.emplace_back(std::move(point));
    return changed_ = true;
  }

  bool ChangeMethod() {
    LocalizationMethod& method = localization_.method;
    if (!options_.method.empty()) method.horizontal = *ParseHorizontalMethod(options_.method);
    if (!options_.heights.empty()) method.vertical = *ParseVerticalMethod(options_.heights);
    if (options_.scale) method.given_scale = *options_.scale;
    if (!(method.given_scale > 0.5 && method.given_scale < 2.0)) {
      return Misuse("A scale is a number near 1.");
    }
    const bool takes_scale = method.horizontal == HorizontalMethod::FixedScale ||
                             method.horizontal == HorizontalMethod::Translation;
    if (options_.scale && !takes_scale) {
      program_.Warn("--scale is for --method fixed-scale and translation; " +
                    std::string(HorizontalMethodKey(method.horizontal)) + " does not use it.");
    }
    if (changed_ || options_.on) localization_.on = true;
    if (options_.off) localization_.on = false;
    return true;
  }

  bool IsChanged() const {
    return changed_ || before_.on != localization_.on || !(before_.method == localization_.method);
  }

  // Refuses the change, or lets it stand: a list that cannot be used, or only with a scale that no
  // site has, never takes the place of a localization that worked.
  void Judge(bool worked) {
    if (changed_ && control_.empty() && !options_.on) localization_.on = false;
    const std::string problem = Problem();
    if (problem.empty()) return;
    if (!IsChanged()) {
      (void)Fail(problem);
      return;
    }
    const bool keeps = changed_ && !worked && !options_.on && !options_.adds();
    if (keeps) {
      localization_.on = false;
      (void)Fail(problem + " The list is kept, but the job does not use it.");
      return;
    }
    (void)Fail(problem + Refusal(worked));
    localization_ = before_;
    refused_ = true;
  }

  std::string Problem() const {
    if (!localization_.on && !options_.adds()) return {};
    if (options_.off && FitProblem(control_).empty()) return {};
    if (control_.empty()) return changed_ && !options_.on ? "" : FitProblem(control_);
    if (std::string problem = FitProblem(control_); !problem.empty()) return problem;
    if (!control_.is_absurd() || options_.on || !IsChanged()) return {};
    return "The scale would be " + FixedNumber(report_.scale_ppm, 0) +
           " ppm from 1, which is no site's: feet taken for metres, another zone?" +
           (SwapWouldFit() ? " With northing and easting of the new point swapped it would fit."
                           : "");
  }

  bool SwapWouldFit() const {
    if (!options_.adds()) return false;
    LocalizationList swapped = list_;
    std::swap(swapped.back()->local_x, swapped.back()->local_y);
    const ControlFit control = FitControl(calculator_, swapped, localization_.method);
    return control.fit.usable() && !control.is_absurd();
  }

  std::string Refusal(bool worked) const {
    std::string text = " Nothing was changed";
    text += worked ? "; the job goes on with the localization that it has." : ".";
    if (options_.adds()) text += " (--no-horizontal --no-vertical adds the point as unused.)";
    if (control_.fit.usable()) text += " (--on takes the fit all the same.)";
    return text;
  }

  bool Save() {
    if (SaveLocalization(program_.files, localization_.path, &list_, session_.job().unit) ==
        SaveLocalizationResult::Saved) {
      return true;
    }
    return Fail("The localization could not be written to " + localization_.path +
                "; nothing was changed.");
  }

  bool SaveSettings() {
    PutJobLocalization(localization_, session_.job().path, session_.settings());
    if (!session_.Save()) {
      exit_code_ = ExitCode::Failed;
      return false;
    }
    const std::string state =
        localization_.on ? FittedLocalization(control_.fit).Describe() : std::string("off");
    if (AppendRawRecord(session_.job(), CommentRecord("Localization: " + state)) ==
        RawFileResult::Written) {
      return true;
    }
    return Fail("The localization is kept, but the raw file " + RawFilePath(session_.job()) +
                " could not be written.");
  }

  // Stored points do not move. Of a switch the person is told in any case, of another fit when it
  // would place points elsewhere.
  void WarnOfStoredPoints() {
    CTrgCalculator now = calculator_;
    if (localization_.on) {
      CalculationSteps steps = now.steps();
      steps.localization = std::make_shared<FittedLocalization>(control_.fit);
      now.SetSteps(std::move(steps));
    }
    const StoredCoordinates stored = CompareStoredCoordinates(session_.job(), now);
    const bool switched = before_.on != localization_.on && (options_.on || options_.off);
    if (stored.points > 0 && (switched || stored.elsewhere > 0)) program_.Warn(stored.Text());
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

  void Print(const std::string& heading) {
    if (options_.json) {
      PrintJson();
    } else {
      PrintText(heading);
    }
  }

  void PrintJson() {
    Json json = LocalizationReportJson(report_);
    json["control"] = ControlListJson(list_);
    json["unit"] = UnitKey(session_.job().unit);
    json["file"] = localization_.path;
    json["on"] = localization_.on;
    json["refused"] = refused_;
    program_.console.Print(JsonText(json));
  }

  void PrintText(const std::string& heading) {
    if (list_.empty()) {
      program_.console.Print(options_.off
                                 ? "The job does not use a localization.\n"
                                 : "The job has no control points; `tarvex localize --help` shows "
                                   "how to add them.\n");
      return;
    }
    if (options_.list) program_.console.Print(ControlListText(list_));
    program_.console.Print(heading + ": residuals in " +
                           std::string(UnitName(session_.job().unit)) + ", local minus fitted\n" +
                           LocalizationReportText(report_, session_.job().unit));
    if (refused_) return;
    program_.console.Print(StateSentence() + "\n");
  }

  std::string StateSentence() {
    if (localization_.on) return "The job uses the localization.";
    const std::string notice = LocalizationOffNotice(session_.job(), session_.settings());
    return notice.empty() ? "The job does not use the localization (--on)." : notice;
  }

  const LocalizeOptions& options_;
  Program& program_;
  JobSession session_;
  CoordinateSystems systems_;
  CTrgCalculator calculator_;
  JobLocalization before_;
  JobLocalization localization_;
  LocalizationList list_;
  ControlFit control_;
  LocalizationReport report_;
  bool changed_ = false;
  bool refused_ = false;
  ExitCode exit_code_ = ExitCode::Failed;  // until the job is open
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
      "file and used from then on: collected points come out in local coordinates. A change that\n"
      "leaves no fit to use, or a scale more than 1 % from 1, is refused.\n"
      "Example: tarvex localize site.crd --gnss 101 --known BM1\n"
      "         tarvex localize site.crd --wgs84 47.1 8.2 520.3 --local 1000 5000 471.2\n"
      "         tarvex localize site.crd --toggle-horizontal 3 --heights plane");
  sub.add_option("JOB.crd", command.options->job, "The job's coordinate file")->required();
  AddLocalizeOptions(sub, *command.options);
  sub.add_flag("--list", command.options->list, "Print the control points with their coordinates");
  sub.add_flag("--json", command.options->json, "Print JSON (residuals in metres)");
}

}  // namespace tarvex
