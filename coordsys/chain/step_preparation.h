// Which steps a system's conversions take beside its projection: the choice of the datum shift, the
// grid correction and the geoid, with their files loaded from the data folder.
//
// The datum shift, in this order:
//   a shift named by the job   "GR3DF97A", an NTv2 file (".gsb"), "NAD27", "TOWGS84" for the
//                              definition's numbers, "TOWGS84=dX,dY,dZ[,rX,rY,rZ,ppm]" for others,
//                              "NONE" for WGS84 latitude and longitude as they are
//   a NAD27 datum, on a zone of the NAD27 families or without TOWGS84 numbers: the NAD converter
//   TOWGS84 numbers in the record                        seven parameters
//   a datum that is WGS84                         none is needed
//   any other                                            none: the calculator refuses to convert
//
// The grid correction that the job names by its label, else the projection family's own:
//   the British family              "ostn02_x.bin", "ostn02_y.bin"
//   the Dutch families, "NADCON"    "X2c.grd", "Y2c.grd", cubic, taken off
//   "VITEL"                         "HungarianEOV_dEast.grd", "..._dNorth.grd", "..._dHeight.grd"
//   "Belge 1972 - xyGridLb72"       "Belgium72_dEast.grd", "Belgium72_dNorth.grd"
//
// A file that is missing or damaged is named in `problems`; the step in its place refuses
// (datum shift, geoid) or leaves the point uncorrected and says so (grid correction).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "coordsys/chain/calculator.h"
#include "coordsys/closed/closed_library.h"
#include "coordsys/datum/nad_converter.h"
#include "coordsys/grids/load_progress.h"
#include "coordsys/national_grids.h"
#include "coordsys/run_messages.h"
#include "platform/file.h"

namespace tarvex {

/// The labels under which shifts are chosen, beside those of coordsys/national_grids.h.
inline constexpr std::string_view kNadConverterLabel = "NAD27";
inline constexpr std::string_view kSevenParameterLabel = "TOWGS84";
inline constexpr std::string_view kNoShiftLabel = "NONE";

/// What is chosen beside the record; both names may be empty. A file is looked for in the data
/// folder unless it is named with its path.
struct StepChoice {
  std::string shift;  ///< a label, or the name of an NTv2 file
  std::string geoid;  ///< the name of a geoid file
  /// The definition holds a TOWGS84, even one of zeros: its datum lies where these say.
  bool definitionGivesShift = false;

  bool operator==(const StepChoice&) const = default;
};

/// Where steps come from. All references outlive the steps.
struct StepSources {
  FileSystem& files;
  std::string dataFolder;  ///< with its trailing separator
  std::shared_ptr<ClosedLibrary> coordSys;
  std::shared_ptr<const NadConverter> nadConverter;
  RunMessages* messages = nullptr;
  LoadProgress* progress = nullptr;
};

struct PreparedSteps {
  CalculationSteps steps;
  std::vector<std::string> problems;  ///< sentences; empty when every file was found
  std::string wrongChoice;            ///< why the shift that was named cannot be used; a sentence
};

PreparedSteps PrepareSteps(const ProjectionRecord& record, const StepChoice& choice,
                           const StepSources& sources);

}  // namespace tarvex
