#include "app/workflow/job_calculator.h"

#include "app/workflow/job_localization.h"

namespace tarvex {

bool MakeJobCalculator(JobSession& session, CoordinateSystems& systems, CTrgCalculator& calculator,
                       std::string& problem) {
  if (!systems.MakeCalculator(SystemOfSettings(session.settings()), session.job().options.unit,
                              calculator, problem) ||
      !ApplyJobLocalization(session.job(), session.settings(), calculator, problem)) {
    return false;
  }
  const std::string notice = LocalizationOffNotice(session.job(), session.settings());
  if (!notice.empty()) session.observer().OnWarning(notice);
  return true;
}

}  // namespace tarvex
