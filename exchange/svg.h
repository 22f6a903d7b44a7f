// A small writer of SVG pictures: figures in drawing coordinates (x right, y up, any unit), fitted
// into a page of pixels.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "exchange/label_room.h"

namespace tarvex {

struct DrawingPoint {
  double x = 0.0;
  double y = 0.0;
};

/// The part of the drawing to show.
struct DrawingBox {
  double left = 0.0;
  double bottom = 0.0;
  double right = 0.0;
  double top = 0.0;

  /// Grows to hold a point; `first` starts it.
  void Take(const DrawingPoint& at, bool first);
};

struct StrokeStyle {
  std::string_view color = "#222";
  double width = 1.5;  ///< pixels
  bool dashed = false;
};

struct TextStyle {
  enum class Anchor { Start, Middle, End };
  double size = 12.0;  ///< pixels
  std::string_view color = "#222";
  Anchor anchor = Anchor::Start;
  double rotation = 0.0;  ///< degrees clockwise on the page
};

class SvgPicture {
 public:
  /// `stretch` draws y that many times larger than x. The page is `width` pixels wide; its height
  /// follows from the box, between 240 and 1000 pixels.
  SvgPicture(const DrawingBox& box, double width, double margin, double stretch = 1.0);

  void Line(std::span<const DrawingPoint> points, const StrokeStyle& style);
  /// Filled, without outline.
  void Area(std::span<const DrawingPoint> points, std::string_view color);
  void Dot(const DrawingPoint& at, double radius, std::string_view color);
  /// `dx`, `dy` move the text on the page, in pixels, right and down.
  void Text(const DrawingPoint& at, std::string_view text, const TextStyle& style, double dx = 0.0,
            double dy = 0.0);
  /// A place for a text: where Text would put it, moved `aside` pixels across its line.
  struct Place {
    DrawingPoint at;
    TextStyle style;
    double dx = 0.0;
    double dy = 0.0;
    double aside = 0.0;
  };
  /// Puts the text at the first place where it lies on no other text and not off the page; a text
  /// that is put aside gets a thin line to where it belongs. False when every place is taken: then
  /// nothing is drawn.
  bool TextWhereFree(std::string_view text, std::span<const Place> places);

  /// In page coordinates, pixels from the upper left corner.
  void PageText(double x, double y, std::string_view text, const TextStyle& style);
  void PageLine(double x1, double y1, double x2, double y2, const StrokeStyle& style);

  double PixelsPerUnit() const { return scale_; }
  double width() const { return width_; }
  double height() const { return height_; }

  /// The whole document.
  std::string Finish(std::string_view title) const;

 private:
  struct Pixel {
    double x = 0.0;
    double y = 0.0;
  };
  Pixel OnPage(const DrawingPoint& at) const;
  void AppendText(const Pixel& at, std::string_view text, const TextStyle& style);
  void AppendPath(std::span<const DrawingPoint> points);

  LabelRoom room_;
  DrawingBox box_;
  double width_ = 0.0;
  double height_ = 0.0;
  double scale_ = 1.0;
  double stretch_ = 1.0;
  double left_ = 0.0;
  double top_ = 0.0;
  std::string body_;
};

}  // namespace tarvex
