#include "roads/alignment_index.h"

#include <cmath>

namespace tarvex {
namespace {

constexpr std::uint32_t kLeafSize = 4;
constexpr double kMargin = 1e-6;

}  // namespace

// A curve of length L between two points a chord c apart stays within half of sqrt(L^2 - c^2) of
// the chord's line, and within (L - c) / 2 of its ends along it.
AlignmentIndex::Box AlignmentIndex::BoxOf(const CurvePiece& piece) {
  const PlanPoint end = piece.ToGrid(piece.end.x, piece.end.y);
  double reach = kMargin;
  if (piece.curvature != 0.0 || piece.sharpness != 0.0) {
    const double chord2 = piece.end.x * piece.end.x + piece.end.y * piece.end.y;
    reach += 0.5 * std::sqrt(std::max(0.0, piece.length * piece.length - chord2));
  }
  return {std::min(piece.start.northing, end.northing) - reach,
          std::min(piece.start.easting, end.easting) - reach,
          std::max(piece.start.northing, end.northing) + reach,
          std::max(piece.start.easting, end.easting) + reach};
}

AlignmentIndex::Box AlignmentIndex::BoxOf(std::uint32_t first, std::uint32_t last) const {
  Box box = boxes_[first];
  for (std::uint32_t i = first + 1; i < last; ++i) {
    box.south = std::min(box.south, boxes_[i].south);
    box.west = std::min(box.west, boxes_[i].west);
    box.north = std::max(box.north, boxes_[i].north);
    box.east = std::max(box.east, boxes_[i].east);
  }
  return box;
}

void AlignmentIndex::Split(std::size_t node) {
  const std::uint32_t first = nodes_[node].first;
  const std::uint32_t last = nodes_[node].last;
  if (last - first <= kLeafSize) return;
  const std::uint32_t middle = first + (last - first) / 2;
  const auto left = static_cast<std::uint32_t>(nodes_.size());
  nodes_[node].left = left;
  nodes_.push_back({BoxOf(first, middle), first, middle});
  nodes_.push_back({BoxOf(middle, last), middle, last});
  Split(left);
  Split(left + 1);
}

AlignmentIndex::AlignmentIndex(std::span<const CurvePiece> pieces) {
  if (pieces.empty()) return;
  boxes_.reserve(pieces.size());
  for (const CurvePiece& piece : pieces) boxes_.push_back(BoxOf(piece));
  const auto count = static_cast<std::uint32_t>(boxes_.size());
  nodes_.reserve(pieces.size());
  nodes_.push_back({BoxOf(0, count), 0, count});
  Split(0);
}

}  // namespace tarvex
