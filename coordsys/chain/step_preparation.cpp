#include "coordsys/chain/step_preparation.h"

#include "coordsys/datum/datum_lie.h"
#include "coordsys/datum/grid_shifts.h"
#include "coordsys/datum/seven_parameter_shift.h"
#include "coordsys/geoid/geoid_step.h"
#include "coordsys/grids/plane_corrections.h"
#include "core/string_table.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr int kCorrectionMissing = 4162;
constexpr int kHungarianMissing = 1703;
constexpr int kDefinitionWithoutShift = 4164;
constexpr int kBadParameters = 4165;
constexpr int kShiftsItself = 4166;
constexpr int kNoNadconGrids = 4167;
constexpr int kNone = 4168;
constexpr int kOtherGrid = 4178;
constexpr int kNothingToShift = 4179;

bool EndsWithIgnoringCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() &&
         EqualsIgnoringCase(text.substr(text.size() - end.size()), end);
}

// The names under which definitions of every origin carry the North American Datum of 1927; its
// Canadian readjustments ("NAD27(76)", "... (CGQ77)") are other datums.
bool IsNad27(const ProjectionRecord& record) {
  std::string name;
  for (const char c : record.datumName.view()) {
    if (c != '_' && c != ' ') name += UpperCase(c);
  }
  for (const std::string_view known :
       {"NAD27", "NAD1927", "NORTHAMERICANDATUM1927", "NORTHAMERICAN1927", "DNORTHAMERICAN1927",
        "DNORTHAMERICANDATUM1927"}) {
    if (name == known) return true;
  }
  return false;
}

bool IsNad27Family(const ProjectionRecord& record) {
  return record.projectionType >= static_cast<int>(ProjectionType::ObliqueMercator27) &&
         record.projectionType <= static_cast<int>(ProjectionType::TransverseMercatorAlaska27);
}

// NAD27 goes by the converter on the zones of its own families, and wherever its definition gives
// no numbers.
bool TakesNadConverter(const ProjectionRecord& record) {
  return IsNad27(record) && (IsNad27Family(record) || !HasDatumShift(record));
}

// These families take WGS84 positions: the closed library shifts the datum, or the national grid
// does.
bool ShiftsInside(const ProjectionRecord& record) {
  switch (static_cast<ProjectionType>(record.projectionType)) {
    case ProjectionType::TransverseMercatorOstn02:
    case ProjectionType::TransverseMercator34:
    case ProjectionType::ObliqueMercatorEov:
      return true;
    default:
      return false;
  }
}

// What the text of a correction calls its files.
std::string Names(const std::vector<std::string>& files) {
  std::string text;
  for (const std::string& file : files) text += (text.empty() ? "" : ", ") + file;
  return text;
}

std::vector<std::string> FilesOf(const NationalGrid& grid) {
  std::vector<std::string> files;
  for (const std::string_view file : grid.files) {
    if (!file.empty()) files.emplace_back(file);
  }
  return files;
}

class StepPreparer {
 public:
  StepPreparer(const ProjectionRecord& record, const StepChoice& choice, const StepSources& sources)
      : record_(record), choice_(choice), sources_(sources) {}

  PreparedSteps Prepare() {
    prepared_.steps.datumShift = ChooseShift();
    prepared_.steps.gridCorrection = ChooseCorrection();
    prepared_.steps.geoid = ChooseGeoid();
    return std::move(prepared_);
  }

 private:
  std::string PathOf(const std::string& file) const {
    const bool hasPath = file.find('/') != std::string::npos;
    return hasPath ? file : sources_.dataFolder + file;
  }

  std::string Note(std::string problem) {
    prepared_.problems.push_back(problem);
    return problem;
  }

  // A shift that no file could bring: the choice itself is wrong.
  std::shared_ptr<const DatumShift> WrongChoice(std::string problem) {
    prepared_.wrongChoice = problem;
    return std::make_shared<MissingShift>(std::move(problem));
  }

  std::shared_ptr<const DatumShift> SevenParameter(const SevenParameters& parameters) const {
    return std::make_shared<SevenParameterShift>(parameters, EllipsoidOf(record_),
                                                 sources_.coordSys);
  }

  // The national projections have one grid each, or none.
  bool TakesCorrection(const std::string& label) const {
    switch (static_cast<ProjectionType>(record_.projectionType)) {
      case ProjectionType::TransverseMercatorOstn02:
      case ProjectionType::TransverseMercator34:
        return false;
      case ProjectionType::ObliqueStereographicRd2000:
      case ProjectionType::ObliqueStereographicRd2004:
        return label == kDutchGridLabel;
      case ProjectionType::ObliqueMercatorEov:
        return label == kHungarianGridLabel;
      default:
        return true;
    }
  }

  std::shared_ptr<const DatumShift> ChooseShift() {
    const std::string& shift = choice_.shift;
    const bool isCorrection =
        shift == kDutchGridLabel || shift == kHungarianGridLabel || shift == kBelgianGridLabel;
    if (!shift.empty() && !isCorrection && ShiftsInside(record_)) {
      return WrongChoice(Strings().Text(kShiftsItself));
    }
    if (isCorrection && !TakesCorrection(shift)) {
      return WrongChoice(Strings().Text(kOtherGrid, {shift}));
    }
    const bool fromOldDatum = shift == kFrenchGridLabel || shift == kNadConverterLabel;
    if (fromOldDatum && StandsOnWgs84(record_)) {
      return WrongChoice(Strings().Text(kNothingToShift, {shift}));
    }
    if (shift == kFrenchGridLabel) return FrenchShift();
    if (shift == kNadConverterLabel) return NadGrids();
    if (shift == kNoShiftLabel) return std::make_shared<ChosenIdentity>();
    if (shift.starts_with(kSevenParameterLabel)) return ChosenSevenParameter();
    if (EndsWithIgnoringCase(shift, ".gsb")) return Ntv2();
    if (!shift.empty() && !isCorrection) {
      return WrongChoice(Strings().Text(4163, {shift}));
    }
    if (TakesNadConverter(record_)) return NadGrids();
    if (HasDatumShift(record_)) return SevenParameter(SevenParametersOf(record_));
    if (StandsOnWgs84(record_) || !choice_.definitionGivesShift) return nullptr;
    return SevenParameter(SevenParametersOf(record_));
  }

  // "TOWGS84" takes the definition's own numbers, "TOWGS84=..." the ones behind it.
  std::shared_ptr<const DatumShift> ChosenSevenParameter() {
    if (choice_.shift == kSevenParameterLabel) {
      if (choice_.definitionGivesShift || HasDatumShift(record_)) {
        return SevenParameter(SevenParametersOf(record_));
      }
      return WrongChoice(Strings().Text(kDefinitionWithoutShift));
    }
    std::string_view numbers = choice_.shift;
    numbers.remove_prefix(kSevenParameterLabel.size());
    const auto parameters = ParseSevenParameters(numbers);
    if (parameters) return SevenParameter(*parameters);
    return WrongChoice(Strings().Text(kBadParameters, {choice_.shift}));
  }

  // Whatever grids there are: which of them holds a position is the library's to find.
  std::shared_ptr<const DatumShift> NadGrids() {
    const std::string& folder = sources_.nadConverter->gridFolder();
    std::string grids;
    for (const std::string_view name : kNadconGrids) {
      const std::string base = folder + std::string(name);
      if (!sources_.files.Exists(base + ".las") || !sources_.files.Exists(base + ".los")) continue;
      grids += (grids.empty() ? "" : ", ") + std::string(name);
    }
    if (grids.empty()) {
      Note(Strings().Text(kNoNadconGrids, {folder}));
      grids = Strings().Text(kNone);
    }
    return std::make_shared<NadShift>(sources_.nadConverter, std::move(grids));
  }

  std::shared_ptr<const DatumShift> FrenchShift() {
    const std::string name(kFrenchGrid.files[0]);
    Gr3df97aGrid grid;
    const GridStatus status = Gr3df97aGrid::Load(sources_.files, PathOf(name), grid);
    if (!status.ok()) return std::make_shared<MissingShift>(Note(status.Text()));
    return std::make_shared<Gr3df97aShift>(std::move(grid), EllipsoidOf(record_), name);
  }

  std::shared_ptr<const DatumShift> Ntv2() {
    Ntv2Grid grid;
    const GridStatus status = Ntv2Grid::Load(sources_.files, PathOf(choice_.shift), grid);
    if (!status.ok()) return std::make_shared<MissingShift>(Note(status.Text()));
    return std::make_shared<Ntv2Shift>(std::move(grid), choice_.shift);
  }

  std::shared_ptr<const GridCorrection> ChooseCorrection() {
    if (choice_.shift == kHungarianGridLabel) {
      return Surfaces(kHungarianGrid, SurfaceSign::Added, SurfaceCurve::Bilinear,
                      kHungarianMissing);
    }
    if (choice_.shift == kBelgianGridLabel) {
      return Surfaces(kBelgianGrid, SurfaceSign::Added, SurfaceCurve::Bilinear, kCorrectionMissing);
    }
    const auto type = static_cast<ProjectionType>(record_.projectionType);
    if (choice_.shift == kDutchGridLabel || type == ProjectionType::ObliqueStereographicRd2000 ||
        type == ProjectionType::ObliqueStereographicRd2004) {
      return Surfaces(kDutchGrid, SurfaceSign::TakenOff, SurfaceCurve::Cubic, kCorrectionMissing);
    }
    if (type == ProjectionType::TransverseMercatorOstn02) return British();
    return nullptr;
  }

  // East, north and, when there is a third file, height.
  std::shared_ptr<const GridCorrection> Surfaces(const NationalGrid& grid, SurfaceSign sign,
                                                 SurfaceCurve curve, int missingReason) {
    const std::vector<std::string> files = FilesOf(grid);
    GridSurface surfaces[3];
    for (std::size_t i = 0; i < files.size(); ++i) {
      const GridStatus status =
          GridSurface::Load(sources_.files, PathOf(files[i]), sources_.progress, surfaces[i]);
      if (!status.ok()) return Missing(status, missingReason);
    }
    std::optional<GridSurface> height;
    if (files.size() == 3) height = std::move(surfaces[2]);
    return std::make_shared<SurfaceCorrection>(std::move(surfaces[0]), std::move(surfaces[1]),
                                               std::move(height), sign, curve, Names(files));
  }

  std::shared_ptr<const GridCorrection> British() {
    const std::vector<std::string> files = FilesOf(kBritishGrid);
    Ostn02Part parts[2];
    for (std::size_t i = 0; i < files.size(); ++i) {
      const GridStatus status = Ostn02Part::Load(sources_.files, PathOf(files[i]), parts[i]);
      if (!status.ok()) return Missing(status, kCorrectionMissing);
    }
    return std::make_shared<Ostn02Correction>(std::move(parts[0]), std::move(parts[1]),
                                              Names(files));
  }

  std::shared_ptr<const GridCorrection> Missing(const GridStatus& status, int reason) {
    if (reason == kHungarianMissing && sources_.messages != nullptr) {
      sources_.messages->ShowOnce(kHungarianMissing);
    }
    return std::make_shared<MissingCorrection>(Note(status.Text()), reason);
  }

  std::shared_ptr<const GeoidModel> ChooseGeoid() {
    if (choice_.geoid.empty()) return nullptr;
    GeoidGrid grid;
    const GridStatus status = GeoidGrid::Load(sources_.files, PathOf(choice_.geoid), grid);
    if (!status.ok()) return std::make_shared<MissingGeoid>(Note(status.Text()));
    return std::make_shared<GridGeoid>(std::move(grid), choice_.geoid);
  }

  const ProjectionRecord& record_;
  const StepChoice& choice_;
  const StepSources& sources_;
  PreparedSteps prepared_;
};

}  // namespace

bool ShiftIsKnown(const ProjectionRecord& record, bool definitionGivesShift) {
  return definitionGivesShift || HasDatumShift(record) || StandsOnWgs84(record) ||
         TakesNadConverter(record) || ShiftsInside(record);
}

PreparedSteps PrepareSteps(const ProjectionRecord& record, const StepChoice& choice,
                           const StepSources& sources) {
  return StepPreparer(record, choice, sources).Prepare();
}

}  // namespace tarvex
