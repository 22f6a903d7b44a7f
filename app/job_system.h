// The coordinate system that a job or a command names, as a calculator ready to convert.
#pragma once

#include <string>

#include "app/program.h"
#include "coordsys/calculator.h"
#include "core/settings.h"

namespace tarvex {

/// Where a coordinate system comes from: a name of the catalogue or a definition text; neither for
/// none.
struct SystemSource {
  std::string name;
  std::string definition;

  bool empty() const { return name.empty() && definition.empty(); }
};

/// Reads the options `--system NAME` and `--definition FILE`: a name is looked up and a file read.
/// False after a message in `problem`.
[[nodiscard]] bool ReadSystemOptions(Program& program, const std::string& name,
                                     const std::string& file, SystemSource& source,
                                     std::string& problem);

/// The source that a job's settings hold.
SystemSource SystemOfSettings(const Settings& settings);
void PutSystemIntoSettings(const SystemSource& source, Settings& settings);

/// Makes the calculator; false with a sentence in `problem` when the system cannot be used.
[[nodiscard]] bool MakeCalculator(const SystemSource& source, DistanceUnit unit,
                                  CTrgCalculator& calculator, std::string& problem);

/// The system in a few words: its name, or the projection of its definition.
std::string SystemTitle(const SystemSource& source, const CTrgCalculator& calculator);

}  // namespace tarvex
