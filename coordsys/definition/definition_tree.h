// A definition text as the tree of its brackets: KEYWORD["name",number,CHILD[...],...]. The
// record's reader does not need it; the check of what a text says beyond the record does.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace tarvex {

struct DefinitionNode {
  std::string_view keyword;
  std::vector<std::string_view> values;  ///< quoted names without quotes, numbers, bare words
  std::vector<DefinitionNode> nodes;

  /// The first child of a keyword; null when there is none.
  const DefinitionNode* Child(std::string_view childKeyword) const;
  /// The first node of a keyword anywhere below; null when there is none.
  const DefinitionNode* Find(std::string_view belowKeyword) const;
  /// The value at `index`; empty when there are fewer.
  std::string_view Value(std::size_t index) const;
};

/// The tree of a text on one line; nothing when brackets, quotes or commas do not match.
/// `stoppedAt` is then where.
std::optional<DefinitionNode> ReadDefinitionTree(std::string_view text, std::size_t& stoppedAt);

}  // namespace tarvex
