// What loading a grid file came to: nothing wrong, or a named error with the file and the place.
#pragma once

#include <string>

#include "platform/file.h"

namespace tarvex {

enum class GridProblem {
  None,
  Missing,         ///< there is no such file
  Unreadable,      ///< the system refused to read it
  NotThisFormat,   ///< the file does not begin as its format does
  CutShort,        ///< the file ends before its last node
  TooLong,         ///< bytes or numbers follow the last node
  ImpossibleSize,  ///< the header gives bounds, steps or counts that no grid can have
  BadValue,        ///< something that is not a number in the place of one
  PartsDiffer,     ///< the files of one grid do not cover the same nodes
};

struct [[nodiscard]] GridStatus {
  GridProblem problem = GridProblem::None;
  std::string path;
  std::string detail;  ///< where, in words: "line 7", "1200 of 1600 bytes"

  bool ok() const { return problem == GridProblem::None; }
  /// One sentence for people with the file and the place; empty when nothing is wrong.
  std::string Text() const;

  bool operator==(const GridStatus&) const = default;
};

/// The status of a file that could not be opened or read.
GridStatus FromFileStatus(const FileStatus& status, const std::string& path);

}  // namespace tarvex
