// Many points from a text in one go: everything is stored or nothing is.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/workflow/import_line.h"
#include "app/workflow/job_session.h"

namespace tarvex {

/// A line that is no point.
struct BadLine {
  std::size_t number = 0;  ///< from 1
  std::string problem;
};

struct PointImport {
  std::vector<Point> points;
  std::vector<std::string> descriptions;  ///< whole, beside the points
  std::vector<BadLine> badLines;
  std::size_t headingLine = 0;  ///< from 1; 0: none
};

/// A line a point; empty lines, those that begin with # and a heading in front are passed over. The
/// job was opened before.
PointImport ParsePointImport(const Job& job, std::string_view text,
                             const ImportColumns& columns = {});

/// What an import meets in the job.
struct ImportConflicts {
  std::size_t existing = 0;  ///< points that exist
  std::size_t measured = 0;  ///< those of them with a GNSS position in the notes
  std::string example;       ///< the id of the first
  /// How far the points are from those of the job, metres: swapped columns or another zone make it
  /// thousands of kilometres. 0 where they overlap, and in a job without points.
  double awayM = 0.0;
};
/// Nothing when the job cannot be read; the observer has the reason.
std::optional<ImportConflicts> FindImportConflicts(JobSession& session, const PointImport& import);

enum class ImportExisting { Overwrite, Skip };

struct ImportResult {
  bool done = false;  ///< anything else was reported
  std::size_t stored = 0;
  std::size_t replaced = 0;  ///< of the stored ones
  std::size_t skipped = 0;
};

/// `source` is named in the raw file.
ImportResult StorePointImport(JobSession& session, const PointImport& import,
                              ImportExisting existing, const std::string& source);

}  // namespace tarvex
