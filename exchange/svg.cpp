#include "exchange/svg.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr double kLeastHeight = 240.0;
constexpr double kMostHeight = 1000.0;
constexpr int kPixelDecimals = 2;
constexpr double kLetterWidth = 0.62;  // of the font size, on average
constexpr std::string_view kLeaderColor = "#aaaaaa";

LabelBox BoxOf(double x, double y, std::string_view text, const TextStyle& style) {
  const double width = kLetterWidth * style.size * static_cast<double>(text.size());
  const double from = style.anchor == TextStyle::Anchor::Start    ? 0.0
                      : style.anchor == TextStyle::Anchor::Middle ? -0.5 * width
                                                                  : -width;
  return LabelBox::Of(x, y, from, width, style.size, style.rotation);
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : OneLine(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += static_cast<unsigned char>(c) < 0x80 ? c : '?';
    }
  }
  return escaped;
}

std::string Attribute(std::string_view name, double value) {
  return " " + std::string(name) + "=\"" + FixedNumber(value, kPixelDecimals) + "\"";
}

std::string Attribute(std::string_view name, std::string_view value) {
  return " " + std::string(name) + "=\"" + std::string(value) + "\"";
}

std::string StrokeAttributes(const StrokeStyle& style) {
  std::string text = Attribute("stroke", style.color) + Attribute("stroke-width", style.width);
  if (style.dashed) text += Attribute("stroke-dasharray", "6 4");
  return text;
}

}  // namespace

void DrawingBox::Take(const DrawingPoint& at, bool first) {
  if (first) *this = {at.x, at.y, at.x, at.y};
  left = std::min(left, at.x);
  bottom = std::min(bottom, at.y);
  right = std::max(right, at.x);
  top = std::max(top, at.y);
}

SvgPicture::SvgPicture(const DrawingBox& box, double width, double margin, double stretch)
    : box_(box), width_(width), stretch_(stretch) {
  const double wide = std::max(box.right - box.left, 1e-6);
  const double high = std::max(box.top - box.bottom, 1e-6) * stretch;
  const double room = width - 2.0 * margin;
  scale_ = std::min(room / wide, (kMostHeight - 2.0 * margin) / high);
  height_ = std::clamp(high * scale_ + 2.0 * margin, kLeastHeight, kMostHeight);
  left_ = 0.5 * (width - wide * scale_);
  top_ = 0.5 * (height_ - high * scale_);
}

SvgPicture::Pixel SvgPicture::OnPage(const DrawingPoint& at) const {
  return {left_ + (at.x - box_.left) * scale_, top_ + (box_.top - at.y) * scale_ * stretch_};
}

void SvgPicture::AppendPath(std::span<const DrawingPoint> points) {
  body_ += R"( points=")";
  for (const DrawingPoint& point : points) {
    const Pixel at = OnPage(point);
    AppendFixed(body_, at.x, kPixelDecimals);
    body_ += ',';
    AppendFixed(body_, at.y, kPixelDecimals);
    body_ += ' ';
  }
  body_ += '"';
}

void SvgPicture::Line(std::span<const DrawingPoint> points, const StrokeStyle& style) {
  body_ += R"(<polyline fill="none" stroke-linejoin="round")" + StrokeAttributes(style);
  AppendPath(points);
  body_ += "/>\n";
}

void SvgPicture::Area(std::span<const DrawingPoint> points, std::string_view color) {
  body_ += "<polygon stroke=\"none\"" + Attribute("fill", color);
  AppendPath(points);
  body_ += "/>\n";
}

void SvgPicture::Dot(const DrawingPoint& at, double radius, std::string_view color) {
  const Pixel pixel = OnPage(at);
  body_ += "<circle" + Attribute("cx", pixel.x) + Attribute("cy", pixel.y) +
           Attribute("r", radius) + Attribute("fill", color) + "/>\n";
}

void SvgPicture::AppendText(const Pixel& at, std::string_view text, const TextStyle& style) {
  constexpr std::string_view kAnchors[] = {"start", "middle", "end"};
  body_ += "<text" + Attribute("x", at.x) + Attribute("y", at.y) +
           Attribute("font-size", style.size) + Attribute("fill", style.color) +
           Attribute("text-anchor", kAnchors[static_cast<int>(style.anchor)]) +
           // A light rim: lines that run behind a text do not strike it out.
           R"( paint-order="stroke" stroke="#fff" stroke-width="3" stroke-linejoin="round")";
  room_.Take(BoxOf(at.x, at.y, text, style));
  if (style.rotation != 0.0) {
    body_ += " transform=\"rotate(" + FixedNumber(style.rotation, 1) + " " +
             FixedNumber(at.x, kPixelDecimals) + " " + FixedNumber(at.y, kPixelDecimals) + ")\"";
  }
  body_ += ">" + Escaped(text) + "</text>\n";
}

void SvgPicture::Text(const DrawingPoint& at, std::string_view text, const TextStyle& style,
                      double dx, double dy) {
  const Pixel pixel = OnPage(at);
  AppendText({pixel.x + dx, pixel.y + dy}, text, style);
}

bool SvgPicture::TextWhereFree(std::string_view text, std::span<const Place> places) {
  for (const Place& place : places) {
    const double angle = place.style.rotation * std::numbers::pi / 180.0;
    const Pixel origin = OnPage(place.at);
    const Pixel home{origin.x + place.dx, origin.y + place.dy};
    const Pixel at{home.x - place.aside * std::sin(angle), home.y + place.aside * std::cos(angle)};
    const LabelBox box = BoxOf(at.x, at.y, text, place.style);
    if (!box.Inside(width_, height_) || !room_.IsFree(box)) continue;
    if (place.aside != 0.0) {
      PageLine(home.x, home.y, at.x, at.y, {kLeaderColor, 0.8, false});
    }
    AppendText(at, text, place.style);
    return true;
  }
  return false;
}

void SvgPicture::PageText(double x, double y, std::string_view text, const TextStyle& style) {
  AppendText({x, y}, text, style);
}

void SvgPicture::PageLine(double x1, double y1, double x2, double y2, const StrokeStyle& style) {
  body_ += "<line" + Attribute("x1", x1) + Attribute("y1", y1) + Attribute("x2", x2) +
           Attribute("y2", y2) + StrokeAttributes(style) + "/>\n";
}

std::string SvgPicture::Finish(std::string_view title) const {
  const std::string size = FixedNumber(width_, 0) + " " + FixedNumber(height_, 0);
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " +
         size + "\"" + Attribute("width", FixedNumber(width_, 0)) +
         Attribute("height", FixedNumber(height_, 0)) +
         " font-family=\"DejaVu Sans, Helvetica, Arial, sans-serif\">\n<title>" + Escaped(title) +
         "</title>\n<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n" + body_ + "</svg>\n";
}

}  // namespace tarvex
