// The codes of a job: short names of what is measured (TREE, EP), each with a title, read from a
// text file that belongs to the job (docs/formats/codes.md). Letter case makes no difference.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvex {

struct FieldCode {
  std::string code;  ///< one word, as the list spells it
  std::string title;

  bool operator==(const FieldCode&) const = default;
};

/// A line of the list that was left out.
struct CodeListProblem {
  enum class Kind {
    Twice,    ///< the code is in the list before
    TooLong,  ///< longer than a description may be in the coordinate file
    NotText   ///< it holds control characters
  };
  Kind kind = Kind::Twice;
  std::size_t line = 0;  ///< from 1
  std::string code;

  bool operator==(const CodeListProblem&) const = default;
};

class CodeList {
 public:
  CodeList() = default;
  /// A code a line: the code, blanks or a tab, its title. Empty lines and those that begin with #
  /// say nothing. Of a code that occurs twice the first line counts.
  static CodeList Parse(std::string_view text, std::vector<CodeListProblem>& problems);

  bool empty() const { return codes_.empty(); }
  /// In the order of the file.
  const std::vector<FieldCode>& codes() const { return codes_; }

  /// Null when it is not in the list.
  const FieldCode* Find(std::string_view code) const;
  /// Those that begin with `start`, in the order of the file.
  std::vector<const FieldCode*> StartingWith(std::string_view start) const;
  /// The code that was probably meant; null when none is near.
  const FieldCode* Nearest(std::string_view code) const;

 private:
  void Sort();

  std::vector<FieldCode> codes_;
  /// By the code in upper case: its place in codes_.
  std::vector<std::pair<std::string, std::size_t>> sorted_;
};

}  // namespace tarvex
