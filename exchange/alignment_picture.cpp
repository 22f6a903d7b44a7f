#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/number_text.h"
#include "exchange/road_picture.h"
#include "exchange/svg.h"
#include "roads/stakeout.h"

namespace tarvex {
namespace {

constexpr double kPageWidth = 1000.0;
constexpr double kMargin = 115.0;
constexpr double kTurnPerPoint = 0.02;
constexpr int kMostPointsAnElement = 200;
constexpr std::size_t kMostPoints = 50000;  // of the whole picture
constexpr std::size_t kMostNamedElements = 60;
constexpr double kTickPixels = 7.0;

constexpr std::string_view kTangentColor = "#333333";
constexpr std::string_view kArcColor = "#1f5fbf";
constexpr std::string_view kSpiralColor = "#15803d";
constexpr std::string_view kFaultColor = "#c81e1e";
constexpr std::string_view kQuiet = "#777777";

DrawingPoint OnDrawing(const PlanPoint& at) {
  return {at.easting, at.northing};
}

std::string_view ColorOf(const AlignmentElement& element) {
  if (!element.sound) return kFaultColor;
  switch (element.shape) {
    case ElementShape::Arc:
      return kArcColor;
    case ElementShape::Spiral:
      return kSpiralColor;
    case ElementShape::Tangent:
      break;
  }
  return kTangentColor;
}

// 1, 2 or 5 times a power of ten, at least `least`.
double RoundStep(double least) {
  double step = std::pow(10.0, std::floor(std::log10(std::max(least, 1e-3))));
  for (const double factor : {2.0, 2.5, 2.0}) {
    if (step >= least) break;
    step *= factor;
  }
  return step;
}

class AlignmentPainter {
 public:
  AlignmentPainter(const RoadGeometry& road, const StationStyle& style,
                   std::span<const PictureMark> marks)
      : road_(road), alignment_(road.alignment), style_(style), marks_(marks) {
    for (std::size_t i = 0; i < alignment_.elements().size(); ++i) lines_.push_back(Trace(i));
  }

  std::string Paint(std::string_view title) {
    SvgPicture picture(Extent(), kPageWidth, kMargin);
    RoundStations(picture);
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      const AlignmentElement& element = alignment_.elements()[i];
      picture.Line(lines_[i], {ColorOf(element), 2.5, !element.sound});
    }
    KeyPoints(picture);
    for (const PictureMark& mark : marks_) {
      picture.Dot(OnDrawing(mark.at), 4.0, kFaultColor);
      picture.Text(OnDrawing(mark.at), mark.label, {.color = kFaultColor}, 7.0, 4.0);
    }
    Legend(picture, title);
    return picture.Finish(title);
  }

 private:
  // Points along an element, by even parts of its stations.
  std::vector<DrawingPoint> Trace(std::size_t index) const {
    const AlignmentElement& e = alignment_.elements()[index];
    const double turning =
        std::max(std::fabs(e.curvature_start), std::fabs(e.curvature_end)) * e.length;
    const auto most = static_cast<int>(kMostPoints / alignment_.elements().size()) + 1;
    const int wanted = static_cast<int>(std::min(turning / kTurnPerPoint, 1e6)) + 1;
    const int parts = std::min({wanted, most, kMostPointsAnElement});
    const PlanPoint from = NodeAt(e.from_node);
    const PlanPoint to = NodeAt(e.to_node);
    std::vector<DrawingPoint> line{OnDrawing(from)};
    for (int i = 1; i < parts; ++i) {
      const auto at = alignment_.PointOnElement(index, e.length * i / parts);
      line.push_back(OnDrawing(at));
    }
    line.push_back(OnDrawing(to));
    return line;
  }

  PlanPoint NodeAt(std::size_t node) const {
    return {road_.chain[node].northing, road_.chain[node].easting};
  }

  DrawingBox Extent() const {
    DrawingBox box;
    box.Take(lines_.front().front(), true);
    for (const auto& line : lines_) {
      for (const DrawingPoint& at : line) box.Take(at, false);
    }
    for (const PictureMark& mark : marks_) box.Take(OnDrawing(mark.at), false);
    return box;
  }

  // A tick across the road at a point, and its text on the right-hand side.
  void Tick(SvgPicture& picture, const PlanPoint& at, double azimuth, double pixels,
            std::string_view text, std::string_view color, double size, bool right) const {
    const double half = pixels / picture.PixelsPerUnit();
    const double across_n = -std::sin(azimuth) * half;
    const double across_e = std::cos(azimuth) * half;
    const DrawingPoint ends[] = {{at.easting - across_e, at.northing - across_n},
                                 {at.easting + across_e, at.northing + across_n}};
    picture.Line(ends, {color, 1.2});
    if (text.empty()) return;
    // The text runs away from the road, readable from below or from the right.
    double rotation = azimuth * 180.0 / std::numbers::pi;
    bool away = right;
    rotation = std::remainder(rotation, 360.0);
    if (rotation > 90.0 || rotation <= -90.0) {
      rotation -= std::copysign(180.0, rotation);
      away = !away;
    }
    using Anchor = TextStyle::Anchor;
    const double side = (right ? 1.0 : -1.0) * 1.6;
    const DrawingPoint place{at.easting + across_e * side, at.northing + across_n * side};
    picture.Text(place, text,
                 {.size = size,
                  .color = color,
                  .anchor = away ? Anchor::Start : Anchor::End,
                  .rotation = rotation},
                 0.0, size * 0.35);
  }

  void RoundStations(SvgPicture& picture) const {
    const double length = alignment_.end_station() - alignment_.start_station();
    if (!(length > 0.0)) return;
    const double interval = RoundStep(std::max(length / 25.0, 35.0 / picture.PixelsPerUnit()));
    const auto stations = StakeStations(road_, nullptr, interval, alignment_.start_station(),
                                        alignment_.end_station());
    for (const double station : stations) {
      const double shown = road_.equations.Displayed(station).station;
      if (std::fabs(std::remainder(shown, interval)) > 1e-3) continue;
      const auto at = alignment_.PointAt(station);
      Tick(picture, at->at, at->azimuth, kTickPixels, road_.equations.Text(station, style_.mode, 0),
           kQuiet, 10.0, true);
    }
  }

  void KeyPoints(SvgPicture& picture) const {
    const auto& elements = alignment_.elements();
    for (std::size_t i = 0; i <= elements.size(); ++i) {
      const bool last = i == elements.size();
      const AlignmentElement& e = elements[last ? i - 1 : i];
      const std::size_t node = last ? e.to_node : e.from_node;
      const std::string text =
          std::string(RecordName(road_.chain[node])) + " " +
          road_.equations.Text(road_.chain[node].station, style_.mode, style_.decimals);
      Tick(picture, NodeAt(node), last ? e.azimuth_end : e.azimuth_start, kTickPixels * 1.8,
           elements.size() <= kMostNamedElements ? text : std::string(), kTangentColor, 11.0,
           false);
      picture.Dot(OnDrawing(NodeAt(node)), 2.5, kTangentColor);
    }
  }

  void Legend(SvgPicture& picture, std::string_view title) const {
    picture.PageText(20.0, 28.0, title, {.size = 16.0});
    const double bar = RoundStep(80.0 / picture.PixelsPerUnit());
    const double y = picture.height() - 20.0;
    const double end = 20.0 + bar * picture.PixelsPerUnit();
    picture.PageLine(20.0, y, end, y, {kTangentColor, 2.0});
    picture.PageLine(20.0, y - 4.0, 20.0, y + 4.0, {kTangentColor, 2.0});
    picture.PageLine(end, y - 4.0, end, y + 4.0, {kTangentColor, 2.0});
    picture.PageText(20.0, y - 8.0, ShortestNumber(bar), {.size = 11.0});
    const double x = picture.width() - 30.0;
    picture.PageLine(x, 60.0, x, 22.0, {kTangentColor, 1.5});
    picture.PageLine(x - 5.0, 32.0, x, 22.0, {kTangentColor, 1.5});
    picture.PageLine(x + 5.0, 32.0, x, 22.0, {kTangentColor, 1.5});
    picture.PageText(x, 76.0, "N", {.size = 12.0, .anchor = TextStyle::Anchor::Middle});
  }

  const RoadGeometry& road_;
  const Alignment& alignment_;
  StationStyle style_;
  std::span<const PictureMark> marks_;
  std::vector<std::vector<DrawingPoint>> lines_;
};

}  // namespace

std::string AlignmentPicture(const RoadGeometry& road, std::string_view title,
                             const StationStyle& style, std::span<const PictureMark> marks) {
  return AlignmentPainter(road, style, marks).Paint(title);
}

}  // namespace tarvex
