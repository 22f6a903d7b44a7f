// The converter between NAD27 and NAD83, through the closed library "nadconv.dll" and its grids in
// the folder NADConv of the data folder.
//
// WGS84 positions are taken as NAD83. The first position that the library cannot convert is
// reported (once in the run of the program); the position is then left as it was and the conversion
// refused.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "coordsys/calculation_steps.h"
#include "coordsys/closed/closed_library.h"
#include "coordsys/run_messages.h"

namespace tarvex {

class NadConverter {
 public:
  /// `dataFolder` ends with its separator; `messages` may be null and outlives the converter.
  NadConverter(std::shared_ptr<ClosedLibrary> nadconv, std::string dataFolder,
               RunMessages* messages);

  /// The library's result, 1 for success; nothing when the library or its entry point is missing.
  /// The position is changed only for 1; heights stay.
  std::optional<int> ToNad83(Geodetic& position) const;
  std::optional<int> ToNad27(Geodetic& position) const;

  /// Has the library give back its grids and unloads it; the next use loads it afresh. A library
  /// that was never used is not loaded for this.
  void Close() const;

  const std::string& gridFolder() const { return gridFolder_; }

 private:
  std::optional<int> Convert(const char* entryName, Geodetic& position) const;

  std::shared_ptr<ClosedLibrary> nadconv_;
  std::string gridFolder_;
  RunMessages* messages_;
};

/// The converter as the datum shift of a NAD27 system.
class NadShift final : public DatumShift {
 public:
  /// `grids` names those of the folder, for people.
  NadShift(std::shared_ptr<const NadConverter> converter, std::string grids)
      : converter_(std::move(converter)), grids_(std::move(grids)) {}

  StepOutcome ToSystem(Geodetic& position) const override;
  StepOutcome ToWgs84(Geodetic& position) const override;
  std::string Describe() const override;

 private:
  std::shared_ptr<const NadConverter> converter_;
  std::string grids_;
};

/// The "nadconv.dll" of the running system, shared by all calculators.
std::shared_ptr<ClosedLibrary> SystemNadConvLibrary();

}  // namespace tarvex
