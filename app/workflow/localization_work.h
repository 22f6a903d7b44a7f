// Work on the localization of a job: its list of control points is changed and fitted, and what
// comes out is kept or refused. A list that cannot be used, or only with a scale that no site has,
// never takes the place of a localization that worked.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/workflow/control_fit.h"
#include "app/workflow/control_point_source.h"
#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_localization.h"
#include "app/workflow/job_session.h"

namespace tarvex {

/// What is to become of the localization; nothing asked for: it is fitted and reported as it is.
struct LocalizationRequest {
  std::optional<ControlPointSource> add;
  std::vector<std::size_t> remove;  ///< numbers in the list, from 1
  std::vector<std::size_t> toggleHorizontal;
  std::vector<std::size_t> toggleVertical;
  std::string from;  ///< another ".loc" file whose list takes the place of the job's
  std::optional<HorizontalMethod> horizontal;
  std::optional<VerticalMethod> vertical;
  std::optional<double> scale;
  bool on = false;   ///< use it, whatever the scale of the fit
  bool off = false;  ///< do not use it

  bool changesList() const {
    return add || !remove.empty() || !toggleHorizontal.empty() || !toggleVertical.empty() ||
           !from.empty();
  }
};

enum class [[nodiscard]] LocalizationResult {
  Done,        ///< kept, or nothing was to be changed
  BadEntry,    ///< the request makes no sense; `problem` says why
  Failed,      ///< a file, or a list that cannot be fitted; `problem` says what
  KeptUnused,  ///< the list is kept, but the job does not use it; `problem` says why
  Refused      ///< nothing was changed; `problem` says why
};

class LocalizationWork {
 public:
  LocalizationWork(const Workplace& work, JobSession& session);

  /// The job was loaded. What is odd gives warnings on the way.
  LocalizationResult Run(const LocalizationRequest& request);

  const std::string& problem() const { return problem_; }
  /// The localization that the job had can still be used.
  bool workedBefore() const { return worked_; }
  const JobLocalization& localization() const { return localization_; }
  const LocalizationList& list() const { return list_; }
  const ControlFit& control() const { return control_; }
  /// Of the fit that was made, also of one that was refused.
  const LocalizationReport& report() const { return report_; }

 private:
  bool Fail(std::string sentence);
  bool Misuse(std::string sentence);
  bool Open();
  bool LoadList(const std::string& path);
  bool Change();
  bool Toggle(std::size_t number, char LocalizationPoint::* flag);
  bool HasPoint(std::size_t number);
  bool Remove();
  bool Add();
  bool ChangeMethod();
  bool IsChanged() const;
  LocalizationResult Judge();
  std::string FitFault() const;
  bool SwapWouldFit() const;
  bool Save();
  bool SaveSettings();
  void WarnOfStoredPoints();
  std::vector<PlanePoint> JobPlaces(const LocalizationFit& fit);

  Workplace work_;
  JobSession& session_;
  CoordinateSystems systems_;
  LocalizationRequest request_;
  CTrgCalculator calculator_;
  JobLocalization before_;
  JobLocalization localization_;
  LocalizationList list_;
  ControlFit control_;
  LocalizationReport report_;
  std::string problem_;
  LocalizationResult failure_ = LocalizationResult::Failed;
  bool changed_ = false;
  bool worked_ = false;
};

}  // namespace tarvex
