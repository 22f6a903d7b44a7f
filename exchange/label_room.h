// Room for the texts of a picture: which places are taken, so that no text lies on another.
#pragma once

#include <array>
#include <vector>

namespace tarvex {

/// The box of a text on the page, in pixels, perhaps turned.
struct LabelBox {
  struct Corner {
    double x = 0.0;
    double y = 0.0;
  };
  std::array<Corner, 4> corners{};

  /// Of a text that begins `from` pixels along its line from (x, y), with the usual proportions of
  /// a sans-serif; `rotation` in degrees clockwise about (x, y).
  static LabelBox Of(double x, double y, double from, double width, double size, double rotation);

  bool Meets(const LabelBox& other) const;
  bool Inside(double width, double height) const;
};

class LabelRoom {
 public:
  /// True when the box meets none that was taken.
  bool IsFree(const LabelBox& box) const;
  void Take(const LabelBox& box) { taken_.push_back(box); }

 private:
  std::vector<LabelBox> taken_;
};

}  // namespace tarvex
