#include "coordsys/definition/definition_tree.h"

#include <utility>

#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr int kDeepest = 24;

class TreeReader {
 public:
  explicit TreeReader(std::string_view text) : text_(text) {}

  std::size_t position() const { return at_; }
  bool AtEnd() const { return at_ == text_.size(); }

  // KEYWORD[item,item,...]
  bool ReadNode(DefinitionNode& node, int depth) {
    node.keyword = TakeWord();
    if (node.keyword.empty() || depth > kDeepest || !Take('[', '(')) return false;
    do {
      if (!ReadItem(node, depth)) return false;
    } while (Take(',', ','));
    return Take(']', ')');
  }

 private:
  // A quoted name, a child in brackets, or a number or word.
  bool ReadItem(DefinitionNode& node, int depth) {
    if (Take('"', '"')) {
      const std::size_t end = text_.find('"', at_);
      if (end == std::string_view::npos) return false;
      node.values.push_back(text_.substr(at_, end - at_));
      at_ = end + 1;
      return true;
    }
    const std::size_t start = at_;
    const std::string_view word = TakeWord();
    if (word.empty()) return false;
    if (at_ == text_.size() || (text_[at_] != '[' && text_[at_] != '(')) {
      node.values.push_back(word);
      return true;
    }
    at_ = start;
    DefinitionNode child;
    if (!ReadNode(child, depth + 1)) return false;
    node.nodes.push_back(std::move(child));
    return true;
  }

  std::string_view TakeWord() {
    const std::size_t end = text_.find_first_of("[](),\"", at_);
    const std::string_view word = text_.substr(at_, end - at_);
    at_ += word.size();
    return WithoutOuterBlanks(word);
  }

  bool Take(char c, char other) {
    if (at_ == text_.size() || (text_[at_] != c && text_[at_] != other)) return false;
    ++at_;
    return true;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

const DefinitionNode* DefinitionNode::Child(std::string_view childKeyword) const {
  for (const DefinitionNode& node : nodes) {
    if (node.keyword == childKeyword) return &node;
  }
  return nullptr;
}

const DefinitionNode* DefinitionNode::Find(std::string_view belowKeyword) const {
  for (const DefinitionNode& node : nodes) {
    if (node.keyword == belowKeyword) return &node;
    if (const DefinitionNode* below = node.Find(belowKeyword)) return below;
  }
  return nullptr;
}

std::string_view DefinitionNode::Value(std::size_t index) const {
  return index < values.size() ? values[index] : std::string_view();
}

std::optional<DefinitionNode> ReadDefinitionTree(std::string_view text, std::size_t& stoppedAt) {
  TreeReader reader(text);
  DefinitionNode root;
  const bool whole = reader.ReadNode(root, 0) && reader.AtEnd();
  stoppedAt = reader.position();
  return whole ? std::optional(std::move(root)) : std::nullopt;
}

}  // namespace tarvex
