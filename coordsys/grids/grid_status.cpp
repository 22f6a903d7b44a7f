#include "coordsys/grids/grid_status.h"

#include "core/string_table.h"

namespace tarvex {
namespace {

int TextNumber(GridProblem problem) {
  switch (problem) {
    case GridProblem::Missing:
      return 4100;
    case GridProblem::Unreadable:
      return 4101;
    case GridProblem::NotThisFormat:
      return 4102;
    case GridProblem::CutShort:
      return 4103;
    case GridProblem::TooLong:
      return 4104;
    case GridProblem::ImpossibleSize:
      return 4105;
    case GridProblem::BadValue:
      return 4106;
    case GridProblem::PartsDiffer:
      return 4107;
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
