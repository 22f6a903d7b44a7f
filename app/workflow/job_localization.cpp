#include "app/workflow/job_localization.h"

#include <array>
#include <utility>

#include "app/workflow/control_fit.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr std::array<std::pair<std::string_view, HorizontalMethod>, 4> kHorizontalMethods = {
    {{"similarity", HorizontalMethod::Similarity},
     {"fixed-scale", HorizontalMethod::FixedScale},
     {"rotation", HorizontalMethod::RotationOnly},
     {"translation", HorizontalMethod::Translation}}};
constexpr std::array<std::pair<std::string_view, VerticalMethod>, 2> kVerticalMethods = {
    {{"shift", VerticalMethod::Shift}, {"plane", VerticalMethod::InclinedPlane}}};

template <typename Table, typename Method>
std::string_view KeyOf(const Table& table, Method method) {
  for (const auto& [key, known] : table) {
    if (known == method) return key;
  }
  return {};
}

template <typename Method, typename Table>
std::optional<Method> MethodOf(const Table& table, std::string_view name) {
  for (const auto& [key, known] : table) {
    if (key == name) return known;
  }
  return std::nullopt;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

}  // namespace

std::optional<HorizontalMethod> ParseHorizontalMethod(std::string_view name) {
  return MethodOf<HorizontalMethod>(kHorizontalMethods, name);
}

std::string_view HorizontalMethodKey(HorizontalMethod method) {
  return KeyOf(kHorizontalMethods, method);
}

std::optional<VerticalMethod> ParseVerticalMethod(std::string_view name) {
  return MethodOf<VerticalMethod>(kVerticalMethods, name);
}

std::string_view VerticalMethodKey(VerticalMethod method) {
  return KeyOf(kVerticalMethods, method);
}

OrProblem<JobLocalization> ReadJobLocalization(const Settings& settings,
                                               const std::string& jobPath) {
  JobLocalization localization;
  const std::string file = settings.GetOr("localization", "");
  localization.path = file.empty() || file.starts_with('/') ? file : FolderOf(jobPath) + file;
  localization.on = !file.empty() && settings.GetOr("localization_on", "1") != "0";
  const std::string horizontal = settings.GetOr("localization_method", "similarity");
  const std::string vertical = settings.GetOr("localization_heights", "shift");
  const std::string scale = settings.GetOr("localization_scale", "1");
  const auto horizontalMethod = ParseHorizontalMethod(horizontal);
  const auto verticalMethod = ParseVerticalMethod(vertical);
  const auto givenScale = ParseNumber(scale);
  if (!horizontalMethod || !verticalMethod || !givenScale || *givenScale <= 0.0) {
    const std::string wrong = !horizontalMethod ? "localization_method=" + horizontal
                              : !verticalMethod ? "localization_heights=" + vertical
                                                : "localization_scale=" + scale;
    return ProblemOf("The job's setting " + wrong + " makes no sense.");
  }
  localization.method = {
      .horizontal = *horizontalMethod, .givenScale = *givenScale, .vertical = *verticalMethod};
  return localization;
}

void PutJobLocalization(const JobLocalization& localization, const std::string& jobPath,
                        Settings& settings) {
  const std::string folder = FolderOf(jobPath);
  const bool beside = localization.path.starts_with(folder);
  settings.Set("localization",
               beside ? localization.path.substr(folder.size()) : localization.path);
  settings.Set("localization_on", localization.on ? "1" : "0");
  settings.Set("localization_method", HorizontalMethodKey(localization.method.horizontal));
  settings.Set("localization_scale", ShortestNumber(localization.method.givenScale));
  settings.Set("localization_heights", VerticalMethodKey(localization.method.vertical));
}

std::string LocalizationOffNotice(Job& job, const Settings& settings) {
  const auto localization = ReadJobLocalization(settings, job.path);
  if (!localization || localization->on || localization->path.empty()) return {};
  LocalizationFault fault;
  const auto read = LoadLocalization(job.host.files(), localization->path, job.options.unit, fault);
  const bool hasNone = read ? read->points.empty() : !job.host.files().Exists(localization->path);
  if (hasNone) return {};
  return "The job's localization (" + localization->path +
         ") is off: coordinates are those of the system's grid. (tarvex localize " + job.path +
         " --on uses it.)";
}

bool ApplyJobLocalization(Job& job, const Settings& settings, CTrgCalculator& calculator,
                          std::string& problem) {
  const auto localization = ReadJobLocalization(settings, job.path);
  if (!localization) {
    problem = localization.failure().text;
    return false;
  }
  if (!localization->on) return true;
  LocalizationFault fault;
  const auto read = LoadLocalization(job.host.files(), localization->path, job.options.unit, fault);
  const std::string instead = " (tarvex localize " + job.path + " --off works without it.)";
  if (!read) {
    problem =
        "The job's localization cannot be used: " + fault.Text(localization->path) + "." + instead;
    return false;
  }
  const ControlFit control = FitControl(calculator, read->points, localization->method);
  if (const std::string why = FitProblem(control); !why.empty()) {
    problem = "The job's localization cannot be used: " + why + instead;
    return false;
  }
  CalculationSteps steps = calculator.steps();
  steps.localization = std::make_shared<FittedLocalization>(control.fit);
  calculator.SetSteps(std::move(steps));
  return true;
}

}  // namespace tarvex
