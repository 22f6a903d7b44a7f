#include "coordsys/grids/grid_status.h"

#include "coordsys/coordsys_texts.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

int TextNumber(GridProblem problem) {
  switch (problem) {
    case GridProblem::Missing:
      return kTextGridFileMissing;
    case GridProblem::Unreadable:
      return kTextGridFileUnreadable;
    case GridProblem::NotThisFormat:
      return kTextNotThisGridFormat;
    case GridProblem::CutShort:
      return kTextGridCutShort;
    case GridProblem::TooLong:
      return kTextGridTooLong;
    case GridProblem::ImpossibleSize:
      return kTextImpossibleGridSize;
    case GridProblem::BadValue:
      return kTextBadGridValue;
    case GridProblem::PartsDiffer:
      return kTextGridPartsDiffer;
    case GridProblem::None:
      break;
  }
  return 0;
}

}  // namespace

std::string GridStatus::Text() const {
  if (ok()) return {};
  return Strings().Text(TextNumber(problem), {path, detail});
}

GridStatus FromFileStatus(const FileStatus& status, const std::string& path) {
  if (status.ok()) return {};
  if (status.notFound()) return {GridProblem::Missing, path, {}};
  return {GridProblem::Unreadable, path, status.Text()};
}

}  // namespace tarvex
