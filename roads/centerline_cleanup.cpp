#include "roads/centerline_cleanup.h"

#include <cstddef>

namespace tarvex {
namespace {

// The walk marks what goes; the chain is closed up once at the end.
class CleanUpWalk {
 public:
  CleanUpWalk(std::vector<CenterlineElement>& chain, bool keepTangentPoints,
              std::vector<MergedLine>* merged)
      : chain_(chain),
        removed_(chain.size()),
        keepTangentPoints_(keepTangentPoints),
        merged_(merged) {}

  void Run() {
    std::size_t at = 0;
    for (std::size_t next = Next(at); next < chain_.size(); next = Next(at)) {
      if (Examined(at, next)) Compare(at, next);
      at = removed_[at] ? Behind(at, next) : MoveOn(at);
    }
    CloseUp();
  }

 private:
  enum class Duplicate { None, First, Second };

  std::size_t Next(std::size_t at) const {
    if (at >= chain_.size()) return chain_.size();
    do ++at;
    while (at < chain_.size() && removed_[at]);
    return at;
  }

  std::size_t Behind(std::size_t at, std::size_t next) {
    if (at == head_) head_ = next;
    return next;
  }

  bool Examined(std::size_t at, std::size_t next) const {
    if (at == head_ && chain_[next].kind != ElementKind::Vertex) return false;
    return Distance(chain_[at], chain_[next]) < kSamePlace;
  }

  void Compare(std::size_t at, std::size_t next) {
    const CenterlineElement& first = chain_[at];
    CenterlineElement& second = chain_[next];
    if (HasId(first.id) && !HasId(second.id)) second.id = first.id;
    switch (Which(first, second)) {
      case Duplicate::First:
        Remove(at, next);
        break;
      case Duplicate::Second:
        Remove(next, at);
        break;
      case Duplicate::None:
        break;
    }
  }

  void Remove(std::size_t gone, std::size_t kept) {
    removed_[gone] = true;
    if (merged_ != nullptr) merged_->push_back({chain_[gone].line, chain_[kept].line});
  }

  Duplicate Which(const CenterlineElement& first, const CenterlineElement& second) const {
    if (first.kind != ElementKind::Vertex || first.radius != 0.0) return Duplicate::None;
    if (second.kind == ElementKind::Vertex) {
      return first.angle == 0.0 ? Duplicate::First : Duplicate::Second;
    }
    const bool onSpiral = second.kind == ElementKind::SpiralGroup && first.angle == 0.0;
    return onSpiral && !keepTangentPoints_ ? Duplicate::First : Duplicate::None;
  }

  std::size_t MoveOn(std::size_t at) const {
    for (std::size_t steps = WalkStep(chain_[at]); steps > 0; --steps) at = Next(at);
    return at;
  }

  void CloseUp() {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < chain_.size(); ++i) {
      if (!removed_[i]) chain_[kept++] = chain_[i];
    }
    chain_.resize(kept);
  }

  std::vector<CenterlineElement>& chain_;
  std::vector<bool> removed_;
  std::size_t head_ = 0;
  bool keepTangentPoints_;
  std::vector<MergedLine>* merged_;
};

}  // namespace

std::size_t WalkStep(const CenterlineElement& element) {
  if (element.kind == ElementKind::SpiralGroup) return 4;
  return element.kind == ElementKind::Vertex && element.radius != 0.0 ? 2 : 1;
}

void CleanUpChain(std::vector<CenterlineElement>& chain, bool keepTangentPoints,
                  std::vector<MergedLine>* merged) {
  CleanUpWalk(chain, keepTangentPoints, merged).Run();
}

}  // namespace tarvex
