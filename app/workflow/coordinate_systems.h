// The coordinate systems as the program uses them: the catalogues of the data folder, the closed
// libraries, and a calculator made ready for what a job or a command names.
#pragma once

#include <memory>
#include <string>

#include "app/workflow/data_folder.h"
#include "app/workflow/workplace.h"
#include "coordsys/catalogue/system_catalogue.h"
#include "coordsys/chain/calculator.h"
#include "coordsys/chain/step_preparation.h"
#include "core/job/settings.h"

namespace tarvex {

/// Where a coordinate system comes from: its definition text, and the name that it has in the
/// catalogue (with its geoid setting), which it keeps when the catalogue changes. A name alone is a
/// job's from before jobs kept definitions: the catalogue is asked. Neither is none. The datum
/// shift may be named beside it.
struct SystemSource {
  std::string name;
  std::string definition;
  std::string datumShift;

  bool empty() const { return name.empty() && definition.empty(); }
};

/// What `--datum-shift` takes, for the help of the commands that have it.
inline constexpr const char* kDatumShiftHelp =
    "Datum shift of the system (default: by the system): TOWGS84, TOWGS84=dX,dY,dZ[,rX,rY,rZ,ppm] "
    "in metres, seconds and ppm, NAD27, GR3DF97A, VITEL, NADCON (the Dutch grid), \"Belge 1972 - "
    "xyGridLb72\", an NTv2 file, or NONE: WGS84 latitude and longitude as they are";

/// The source that a job's settings hold, and back.
SystemSource SystemOfSettings(const Settings& settings);
void PutSystemIntoSettings(const SystemSource& source, Settings& settings);

class CoordinateSystems final : private MessageBox, private LoadProgress {
 public:
  explicit CoordinateSystems(const Workplace& work);
  ~CoordinateSystems() override;
  CoordinateSystems(const CoordinateSystems&) = delete;
  CoordinateSystems& operator=(const CoordinateSystems&) = delete;

  SystemCatalogue& catalogue() { return catalogue_; }
  const std::string& dataFolder() const { return dataFolder_; }

  /// Reads what `--system NAME` (a name or an EPSG code) and `--definition FILE` name; a definition
  /// that would give no coordinates or wrong ones is refused. False with a sentence in `problem`.
  [[nodiscard]] bool ReadOptions(const std::string& name, const std::string& file,
                                 SystemSource& source, std::string& problem);

  /// Puts the geoid model that `--geoid FILE` names behind the system's name: a file of the data
  /// folder, or any other, which is kept with its whole path. False with a sentence in `problem`
  /// when this file, or one that the name brought already, is no geoid model that can be used.
  [[nodiscard]] bool SettleGeoid(const std::string& file, SystemSource& source,
                                 std::string& problem);

  /// Tells of catalogues that are there but cannot be read.
  void TellCatalogueProblems();

  /// Makes the calculator with all its steps; false with a sentence in `problem` when the system
  /// cannot be used. What only limits it (a grid that is missing) is given as a warning, and every
  /// conversion that it affects says so in its result.
  [[nodiscard]] bool MakeCalculator(const SystemSource& source, DistanceUnit unit,
                                    CTrgCalculator& calculator, std::string& problem);

  /// False for a system on which a job needs a datum shift of its own (--datum-shift).
  static bool KnowsDatumShift(std::string_view definition);

  /// The system in a few words: its name, or what its definition calls it.
  static std::string Title(const SystemSource& source, const CTrgCalculator& calculator);
  /// The same with a datum shift that was named, as the raw file has it; empty without a system.
  static std::string SetupTitle(const SystemSource& source, const CTrgCalculator& calculator);

 private:
  bool ReadSystemOption(const std::string& name, SystemSource& source, std::string& problem);
  std::string GeoidPath(const std::string& file, bool anywhere) const;
  bool CheckForUse(std::string_view text, const std::string& file, std::string& problem);
  void Show(std::string_view title, std::string_view text) override;
  void Show(std::string_view text, std::size_t done, std::size_t total) override;

  Workplace work_;
  std::string dataFolder_;
  SystemCatalogue catalogue_;
  RunMessages messages_;
  std::shared_ptr<NadConverter> nadConverter_;
};

}  // namespace tarvex
