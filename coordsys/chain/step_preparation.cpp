#include "coordsys/chain/step_preparation.h"

#include "coordsys/coordsys_texts.h"
#include "coordsys/datum/coincident_datums.h"
#include "coordsys/datum/datum_route.h"
#include "coordsys/datum/grid_shifts.h"
#include "coordsys/datum/seven_parameter_shift.h"
#include "coordsys/geoid/geoid_step.h"
#include "coordsys/grids/plane_corrections.h"
#include "coordsys/projections/projection_families.h"
#include "core/text/string_table.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

bool EndsWithIgnoringCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() &&
         EqualsIgnoringCase(text.substr(text.size() - end.size()), end);
}

// How the values of a correction's surfaces are taken.
struct SurfaceGrid {
  const NationalGrid* grid;
  SurfaceSign sign;
  SurfaceCurve curve;
  int missingText;
};

constexpr SurfaceGrid kSurfaceGrids[] = {
    {&kDutchGrid, SurfaceSign::TakenOff, SurfaceCurve::Cubic, kTextCorrectionGridMissing},
    {&kHungarianGrid, SurfaceSign::Added, SurfaceCurve::Bilinear, kTextHungarianGridsMissing},
    {&kBelgianGrid, SurfaceSign::Added, SurfaceCurve::Bilinear, kTextCorrectionGridMissing},
};

// The grid correction of a label; null for another label.
const NationalGrid* CorrectionOf(std::string_view label) {
  for (const SurfaceGrid& known : kSurfaceGrids) {
    if (known.grid->label == label) return known.grid;
  }
  return nullptr;
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
      : record_(record),
        family_(FamilyOf(record.projectionType)),
        choice_(choice),
        sources_(sources) {}

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

  std::shared_ptr<const DatumShift> ChooseShift() {
    const std::string& shift = choice_.shift;
    const NationalGrid* const correction = CorrectionOf(shift);
    if (!shift.empty() && !correction && family_.datum == FamilyDatum::Wgs84) {
      return WrongChoice(Strings().Text(kTextProjectionShiftsItself));
    }
    if (correction && family_.Refuses(*correction)) {
      return WrongChoice(Strings().Text(kTextGridOfAnotherCountry, {shift}));
    }
    return shift.empty() || correction ? ShiftOfSystem() : NamedShift();
  }

  std::shared_ptr<const DatumShift> NamedShift() {
    const std::string& shift = choice_.shift;
    const bool fromOldDatum = shift == kFrenchGridLabel || shift == kNadConverterLabel;
    if (fromOldDatum && CoincidesWithWgs84(record_)) {
      return WrongChoice(Strings().Text(kTextNothingToShift, {shift}));
    }
    if (shift == kFrenchGridLabel) return FrenchShift();
    if (shift == kNadConverterLabel) return NadGrids();
    if (shift == kNoShiftLabel) return std::make_shared<ChosenIdentity>();
    if (shift.starts_with(kSevenParameterLabel)) return ChosenSevenParameter();
    if (EndsWithIgnoringCase(shift, ".gsb")) return Ntv2();
    return WrongChoice(Strings().Text(kTextUnknownShift, {shift}));
  }

  std::shared_ptr<const DatumShift> ShiftOfSystem() {
    switch (DatumRouteOf(record_, choice_.definitionGivesShift)) {
      case DatumRoute::NadConverter:
        return NadGrids();
      case DatumRoute::SevenParameters:
        return SevenParameter(SevenParametersOf(record_));
      case DatumRoute::Coincident:
      case DatumRoute::WithinProjection:
      case DatumRoute::Unknown:
        break;
    }
    return nullptr;
  }

  // "TOWGS84" takes the definition's own numbers, "TOWGS84=..." the ones behind it.
  std::shared_ptr<const DatumShift> ChosenSevenParameter() {
    if (choice_.shift == kSevenParameterLabel) {
      if (choice_.definitionGivesShift || HasDatumShift(record_)) {
        return SevenParameter(SevenParametersOf(record_));
      }
      return WrongChoice(Strings().Text(kTextDefinitionWithoutShift));
    }
    std::string_view numbers = choice_.shift;
    numbers.remove_prefix(kSevenParameterLabel.size());
    const auto parameters = ParseSevenParameters(numbers);
    if (parameters) return SevenParameter(*parameters);
    return WrongChoice(Strings().Text(kTextBadShiftParameters, {choice_.shift}));
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
      Note(Strings().Text(kTextNoNadconGrids, {folder}));
      grids = Strings().Text(kTextNoneFound);
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
    const NationalGrid* grid = CorrectionOf(choice_.shift);
    if (!grid && family_.TakesOwnGrid()) grid = family_.grid;
    if (!grid) return nullptr;
    for (const SurfaceGrid& surfaces : kSurfaceGrids) {
      if (surfaces.grid == grid) return Surfaces(surfaces);
    }
    return British();
  }

  // East, north and, when there is a third file, height.
  std::shared_ptr<const GridCorrection> Surfaces(const SurfaceGrid& how) {
    const std::vector<std::string> files = FilesOf(*how.grid);
    GridSurface surfaces[3];
    for (std::size_t i = 0; i < files.size(); ++i) {
      const GridStatus status =
          GridSurface::Load(sources_.files, PathOf(files[i]), sources_.progress, surfaces[i]);
      if (!status.ok()) return Missing(status, how.missingText);
    }
    std::optional<GridSurface> height;
    if (files.size() == 3) height = std::move(surfaces[2]);
    return std::make_shared<SurfaceCorrection>(std::move(surfaces[0]), std::move(surfaces[1]),
                                               std::move(height), how.sign, how.curve,
                                               Names(files));
  }

  std::shared_ptr<const GridCorrection> British() {
    const std::vector<std::string> files = FilesOf(kBritishGrid);
    Ostn02Part parts[2];
    for (std::size_t i = 0; i < files.size(); ++i) {
      const GridStatus status = Ostn02Part::Load(sources_.files, PathOf(files[i]), parts[i]);
      if (!status.ok()) return Missing(status, kTextCorrectionGridMissing);
    }
    return std::make_shared<Ostn02Correction>(std::move(parts[0]), std::move(parts[1]),
                                              Names(files));
  }

  std::shared_ptr<const GridCorrection> Missing(const GridStatus& status, int reason) {
    if (reason == kTextHungarianGridsMissing && sources_.messages != nullptr) {
      sources_.messages->ShowOnce(kTextHungarianGridsMissing);
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
  const ProjectionFamily& family_;
  const StepChoice& choice_;
  const StepSources& sources_;
  PreparedSteps prepared_;
};

}  // namespace

PreparedSteps PrepareSteps(const ProjectionRecord& record, const StepChoice& choice,
                           const StepSources& sources) {
  return StepPreparer(record, choice, sources).Prepare();
}

}  // namespace tarvex
