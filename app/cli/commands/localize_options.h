// What `tarvex localize` can be asked for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/cli/command_line.h"
#include "app/workflow/localization_work.h"

namespace tarvex {

struct LocalizeOptions {
  std::string job;
  // Adding a point
  std::string gnssId;
  std::vector<std::string> wgs84;
  std::string knownId;
  std::vector<double> local;
  std::string description;
  double hrms = 0.0;
  double vrms = 0.0;
  bool noHorizontal = false;
  bool noVertical = false;
  // Changing the list
  std::vector<std::size_t> remove;
  std::vector<std::size_t> toggleHorizontal;
  std::vector<std::size_t> toggleVertical;
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
    return !gnssId.empty() || !wgs84.empty() || !knownId.empty() || !local.empty();
  }
};

/// What the options ask for; false with a sentence in `problem` when they make no sense.
[[nodiscard]] bool TakeLocalizationRequest(const LocalizeOptions& options,
                                           LocalizationRequest& request, std::string& problem);

/// All but the job and the two ways of printing.
void AddLocalizeOptions(Command& command, LocalizeOptions& options);

}  // namespace tarvex
