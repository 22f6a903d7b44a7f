#include "app/workflow/localization_work.h"

#include <algorithm>
#include <cmath>

#include "app/workflow/stored_coordinates.h"
#include "core/coordinates/point_list.h"
#include "core/observations/job_unit.h"
#include "core/raw_data/raw_file.h"
#include "core/raw_data/raw_records.h"
#include "core/text/number_text.h"
#include "core/text/printable.h"

namespace tarvex {
namespace {

// What a fit is described by can be the same with other control points.
constexpr const char* kControlChanged = "Localization control changed";
constexpr double kElsewhereM = 100'000.0;  // points in other coordinates than the local ones

}  // namespace

LocalizationWork::LocalizationWork(const Workplace& work, JobSession& session)
    : work_(work), session_(session), systems_(work) {}

LocalizationResult LocalizationWork::Run(const LocalizationRequest& request) {
  request_ = request;
  if (!Open()) return failure_;
  worked_ =
      localization_.on && FitProblem(FitControl(calculator_, list_, localization_.method)).empty();
  if (!Change()) return failure_;
  control_ = FitControl(calculator_, list_, localization_.method);
  report_ = ReportLocalization(control_.points, localization_.method, JobPlaces(control_.fit),
                               session_.job().options.unit);
  const LocalizationResult judged = Judge();
  if (judged == LocalizationResult::Refused || judged == LocalizationResult::Failed) return judged;
  if (changed_ && !Save()) return failure_;
  if (!IsChanged()) return judged;
  if (!SaveSettings()) return failure_;
  WarnOfStoredPoints();
  return judged;
}

bool LocalizationWork::Fail(std::string sentence) {
  problem_ = std::move(sentence);
  failure_ = LocalizationResult::Failed;
  return false;
}

bool LocalizationWork::Misuse(std::string sentence) {
  problem_ = std::move(sentence);
  failure_ = LocalizationResult::BadEntry;
  return false;
}

// The calculator without a localization, the settings and the list.
bool LocalizationWork::Open() {
  Job& job = session_.job();
  std::string problem;
  if (!systems_.MakeCalculator(SystemOfSettings(session_.settings()), job.options.unit, calculator_,
                               problem)) {
    return Fail(problem);
  }
  auto localization = ReadJobLocalization(session_.settings(), job.path);
  if (!localization) return Fail(localization.failure().text);
  localization_ = *std::move(localization);
  if (localization_.path.empty()) localization_.path = PathWithExtension(job.path, "loc");
  before_ = localization_;
  const bool expected = localization_.on || work_.files.Exists(localization_.path);
  if (!expected || !request_.from.empty() || LoadList(localization_.path)) return true;
  // A list that cannot be read can still be switched off, and only that.
  if (!request_.off || request_.changesList()) return false;
  work_.observer.OnWarning(problem_);
  problem_.clear();
  return true;
}

// False with the problem set.
bool LocalizationWork::LoadList(const std::string& path) {
  LocalizationFault fault;
  auto read = LoadLocalization(work_.files, path, session_.job().options.unit, fault);
  if (!read) {
    return Fail(PrintableLine(fault.Text(path)) + ".");
  }
  list_ = std::move(read->points);
  for (const auto& [name, value] : read->settings) {
    work_.observer.OnWarning(PrintableLine(path + " also holds the setting " + name + "=" + value) +
                             ", which is not used here.");
  }
  return true;
}

bool LocalizationWork::Change() {
  if (!request_.from.empty()) {
    if (!LoadList(request_.from)) return false;
    changed_ = true;
  }
  for (const std::size_t number : request_.toggleHorizontal) {
    if (!Toggle(number, &LocalizationPoint::useHorizontal)) return false;
  }
  for (const std::size_t number : request_.toggleVertical) {
    if (!Toggle(number, &LocalizationPoint::useVertical)) return false;
  }
  if (!Remove()) return false;
  if (request_.add && !Add()) return false;
  return ChangeMethod();
}

bool LocalizationWork::Toggle(std::size_t number, char LocalizationPoint::* flag) {
  if (!HasPoint(number)) return false;
  char& use = (*list_[number - 1]).*flag;
  use = use == 'Y' ? 'N' : 'Y';
  return changed_ = true;
}

bool LocalizationWork::HasPoint(std::size_t number) {
  if (number >= 1 && number <= list_.size()) return true;
  return Misuse("There is no control point " + std::to_string(number) + "; the list holds " +
                std::to_string(list_.size()) + ".");
}

bool LocalizationWork::Remove() {
  std::vector<std::size_t> numbers = request_.remove;
  std::sort(numbers.rbegin(), numbers.rend());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  for (const std::size_t number : numbers) {
    if (!HasPoint(number)) return false;
    list_.erase(list_.begin() + static_cast<std::ptrdiff_t>(number - 1));
    changed_ = true;
  }
  return true;
}

bool LocalizationWork::Add() {
  auto point = ReadControlPoint(*request_.add, session_.job());
  if (!point) return Fail(point.failure().text);
  list_.emplace_back(*std::move(point));
  return changed_ = true;
}

bool LocalizationWork::ChangeMethod() {
  LocalizationMethod& method = localization_.method;
  method.horizontal = request_.horizontal.value_or(method.horizontal);
  method.vertical = request_.vertical.value_or(method.vertical);
  if (request_.scale) method.givenScale = *request_.scale;
  if (!(method.givenScale > 0.5 && method.givenScale < 2.0)) {
    return Misuse("A scale is a number near 1.");
  }
  const bool takesScale = method.horizontal == HorizontalMethod::FixedScale ||
                          method.horizontal == HorizontalMethod::Translation;
  if (request_.scale && !takesScale) {
    work_.observer.OnWarning("A given scale is for the methods fixed-scale and translation; " +
                             std::string(HorizontalMethodKey(method.horizontal)) +
                             " does not use it.");
  }
  if (changed_ || request_.on) localization_.on = true;
  if (request_.off) localization_.on = false;
  return true;
}

bool LocalizationWork::IsChanged() const {
  return changed_ || before_.on != localization_.on || !(before_.method == localization_.method);
}

// Refuses the change, or lets it be.
LocalizationResult LocalizationWork::Judge() {
  if (changed_ && control_.empty() && !request_.on) localization_.on = false;
  problem_ = FitFault();
  if (problem_.empty()) return LocalizationResult::Done;
  if (!IsChanged()) return LocalizationResult::Failed;
  const bool keeps = changed_ && !worked_ && !request_.on && !request_.add;
  if (keeps) {
    localization_.on = false;
    return LocalizationResult::KeptUnused;
  }
  localization_ = before_;
  return LocalizationResult::Refused;
}

// Why the fit is not to be used; empty when it is, or when it is not asked for.
std::string LocalizationWork::FitFault() const {
  if (!localization_.on && !request_.add) return {};
  if (request_.off && FitProblem(control_).empty()) return {};
  if (control_.empty()) return changed_ && !request_.on ? "" : FitProblem(control_);
  if (std::string problem = FitProblem(control_); !problem.empty()) return problem;
  if (!control_.isAbsurd() || request_.on || !IsChanged()) return {};
  return "The scale would be " + FixedNumber(report_.scalePpm, 0) +
         " ppm from 1, which is no site's: feet taken for metres, another zone?" +
         (SwapWouldFit() ? " With northing and easting of the new point swapped it would fit."
                         : "");
}

bool LocalizationWork::SwapWouldFit() const {
  if (!request_.add.has_value()) return false;
  LocalizationList swapped = list_;
  std::swap(swapped.back()->localX, swapped.back()->localY);
  const ControlFit control = FitControl(calculator_, swapped, localization_.method);
  return control.fit.usable() && !control.isAbsurd();
}

bool LocalizationWork::Save() {
  if (SaveLocalization(work_.files, localization_.path, &list_, session_.job().options.unit) ==
      SaveLocalizationResult::Saved) {
    return true;
  }
  return Fail("The localization could not be written to " + localization_.path +
              "; nothing was changed.");
}

bool LocalizationWork::SaveSettings() {
  PutJobLocalization(localization_, session_.job().path, session_.settings());
  if (!session_.Save()) return Fail("The settings of the job could not be written.");
  const std::string state =
      localization_.on ? FittedLocalization(control_.fit).Describe() : std::string("off");
  const std::string record = session_.RawOpening() +
                             (changed_ ? CommentRecord(kControlChanged) : std::string()) +
                             CommentRecord("Localization: " + state);
  const auto unit = JobUnit::Begin(session_.job());
  if (unit) unit->AppendRaw(record);
  if (unit && unit->Commit() == ChangeResult::Done) {
    session_.RawIsOpened();
    return true;
  }
  return Fail("The localization is kept, but the raw file " + RawFilePath(session_.job()) +
              " could not be written.");
}

// Stored points do not move. A switch is always reported, another fit when it
// would place points elsewhere.
void LocalizationWork::WarnOfStoredPoints() {
  CTrgCalculator now = calculator_;
  if (localization_.on) {
    CalculationSteps steps = now.steps();
    steps.localization = std::make_shared<FittedLocalization>(control_.fit);
    now.SetSteps(std::move(steps));
  }
  const StoredCoordinates stored = CompareStoredCoordinates(session_.job(), now);
  const bool switched = before_.on != localization_.on && (request_.on || request_.off);
  if (stored.points > 0 && (switched || stored.elsewhere > 0))
    work_.observer.OnWarning(stored.Text());
}

// The points of the job on the grid, to see whether the control reaches them.
std::vector<PlanePoint> LocalizationWork::JobPlaces(const LocalizationFit& fit) {
  std::vector<PlanePoint> places;
  PointList points;
  if (!fit.usable() || LoadAllPoints(session_.job(), points) != LoadPointsResult::Loaded) {
    return places;
  }
  const FittedLocalization step(fit);
  const PlaneSimilarity& centre = fit.horizontal.similarity;
  for (const Point& point : points) {
    const DistanceUnit unit = session_.job().options.unit;
    GridMetres at = {ToMetres(point.at.northing, unit), ToMetres(point.at.easting, unit), 0.0};
    (void)step.ToGrid(at);
    if (std::hypot(at.northingM - centre.gridNorthingM, at.eastingM - centre.gridEastingM) <
        kElsewhereM) {
      places.push_back({at.northingM, at.eastingM});
    }
  }
  return places;
}

}  // namespace tarvex
