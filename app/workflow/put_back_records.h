// Measurements that stand twice in a raw file: a store had replaced them and was taken back.
#pragma once

#include <string_view>

namespace tarvex {

/// Follows a raw file from its begin, line by line.
class PutBackRecords {
 public:
  /// True for the position of a measurement that is there once more, and not for one that was made
  /// after a store was taken back.
  bool Take(std::string_view line);

 private:
  std::string_view takenBack_;  ///< of the file; empty: nothing
};

}  // namespace tarvex
