// The lines of an input of any length, a block of whole lines at a time, in memory that does not
// grow with it. Lines come as soon as they are there: a person or another program that writes a
// line and waits for the answer gets it.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

class InputBlocks {
 public:
  /// Fills part or all of `out`, waiting for at least one byte; returns how many, 0 at the end.
  using ReadSome = std::function<std::size_t(std::span<char> out)>;

  explicit InputBlocks(ReadSome readSome);

  /// The next lines, without their ends (LF, CR LF), as views that hold until the next call; false
  /// when there are none left. Of a line longer than the block only the beginning is given.
  bool Next(std::vector<std::string_view>& lines);

 private:
  std::size_t TakeLines(std::vector<std::string_view>& lines);

  static constexpr std::size_t kBlock = 256 * 1024;

  ReadSome readSome_;
  std::vector<char> bytes_;
  std::size_t begin_ = 0;  ///< of what has not been given out
  std::size_t end_ = 0;
  bool skipping_ = false;  ///< the rest of a line that was too long
};

/// Bytes of the standard input as they come, at least one; returns how many, 0 at its end and when
/// the person ended the program. What was printed before is shown first.
std::size_t ReadStandardInput(std::span<char> out);

}  // namespace tarvex
