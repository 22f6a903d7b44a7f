#include "app/workflow/job_calculator.h"

#include "app/workflow/job_localization.h"

namespace tarvex {

bool MakeJobCalculator(JobSession& session, CoordinateSystems& systems, CTrgCalculator& calculator,
                       std::string& problem) {
  return systems.MakeCalculator(SystemOfSettings(session.settings()), session.job().unit,
                                calculator, problem) &&
         ApplyJobLocalization(session.job(), session.settings(), calculator, problem);
}

}  // namespace tarvex
