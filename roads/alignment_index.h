// Finds the elements of an alignment that can hold the nearest place to a point: a binary tree of
// boxes over the elements in order, since neighbours along a road are neighbours on the ground.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "roads/curve_piece.h"

namespace tarvex {

class AlignmentIndex {
 public:
  AlignmentIndex() = default;
  explicit AlignmentIndex(std::span<const CurvePiece> pieces);

  /// Calls visit(element) for elements whose box is nearer than `reach`, nearer branches first;
  /// visit returns the new reach, a squared distance.
  template <typename Visit>
  void Search(const PlanPoint& point, double reach, Visit visit) const {
    std::array<std::uint32_t, 64> open;  // the tree is balanced: depth 64 would be 2^64 elements
    std::size_t count = 0;
    if (!nodes_.empty()) open[count++] = 0;
    while (count > 0) {
      const Node& node = nodes_[open[--count]];
      if (node.box.SquaredDistance(point) > reach) continue;
      if (node.left == 0) {
        for (std::uint32_t i = node.first; i < node.last; ++i) {
          if (boxes_[i].SquaredDistance(point) <= reach) reach = visit(i);
        }
        continue;
      }
      const bool leftFirst = nodes_[node.left].box.SquaredDistance(point) <=
                             nodes_[node.left + 1].box.SquaredDistance(point);
      open[count++] = leftFirst ? node.left + 1 : node.left;
      open[count++] = leftFirst ? node.left : node.left + 1;
    }
  }

 private:
  struct Box {
    double south = 0.0;
    double west = 0.0;
    double north = 0.0;
    double east = 0.0;

    double SquaredDistance(const PlanPoint& p) const {
      const double dn = std::max({south - p.northing, 0.0, p.northing - north});
      const double de = std::max({west - p.easting, 0.0, p.easting - east});
      return dn * dn + de * de;
    }
  };
  struct Node {
    Box box;
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    std::uint32_t left = 0;  ///< 0 for a leaf; the right branch follows it
  };

  static Box BoxOf(const CurvePiece& piece);
  Box BoxOf(std::uint32_t first, std::uint32_t last) const;
  void Split(std::size_t node);

  std::vector<Box> boxes_;
  std::vector<Node> nodes_;
};

}  // namespace tarvex
