#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text/number_text.h"
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
constexpr std::string_view kEquationColor = "#7c3aed";
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
  AlignmentPainter(const RoadGeometry& road, const PictureLook& look,
                   std::span<const PictureMark> marks)
      : road_(road),
        alignment_(road.alignment),
        style_(look.stations),
        unit_(look.unit),
        marks_(marks) {
    for (std::size_t i = 0; i < alignment_.elements().size(); ++i) lines_.push_back(Trace(i));
  }

  std::string Paint(std::string_view title) {
    SvgPicture picture(Extent(), kPageWidth, kMargin);
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      const AlignmentElement& element = alignment_.elements()[i];
      picture.Line(lines_[i], {ColorOf(element), 2.5, !element.sound});
    }
    // What matters most finds its room first.
    Legend(picture, title);
    for (const PictureMark& mark : marks_) Mark(picture, mark);
    Equations(picture);
    KeyPoints(picture);
    RoundStations(picture);
    return picture.Finish(title);
  }

 private:
  // Points along an element, by even parts of its stations.
  std::vector<DrawingPoint> Trace(std::size_t index) const {
    const AlignmentElement& e = alignment_.elements()[index];
    const double turning =
        std::max(std::fabs(e.curvatureStart), std::fabs(e.curvatureEnd)) * e.length;
    const auto most = static_cast<int>(kMostPoints / alignment_.elements().size()) + 1;
    const int wanted = static_cast<int>(std::min(turning / kTurnPerPoint, 1e6)) + 1;
    const int parts = std::min({wanted, most, kMostPointsAnElement});
    const PlanPoint from = NodeAt(e.fromNode);
    const PlanPoint to = NodeAt(e.toNode);
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

  struct TickStyle {
    double pixels = 0.0;  ///< half its length
    std::string_view color;
    double textSize = 0.0;
    bool right = true;  ///< the side of the road that its text is tried on first
    int asides = 0;     ///< how far along the road the text may be put
  };

  // A tick across the road at a point, and its text beside it: it runs away from the road, readable
  // from below or from the right.
  void Tick(SvgPicture& picture, const PlanPoint& at, double azimuth, std::string_view text,
            const TickStyle& style) const {
    const double half = style.pixels / picture.PixelsPerUnit();
    const DrawingPoint across{std::cos(azimuth) * half, -std::sin(azimuth) * half};
    const DrawingPoint ends[] = {{at.easting - across.x, at.northing - across.y},
                                 {at.easting + across.x, at.northing + across.y}};
    picture.Line(ends, {style.color, 1.2});
    if (text.empty()) return;
    std::vector<SvgPicture::Place> places;
    for (int step = 0; step <= style.asides; ++step) {
      for (const bool right : {style.right, !style.right}) {
        for (const double sign : {1.0, -1.0}) {
          if (step == 0 && sign < 0.0) continue;
          places.push_back(BesideTick(at, across, azimuth, right, style));
          places.back().aside = sign * step * 1.15 * style.textSize;
        }
      }
    }
    (void)picture.TextWhereFree(text, places);
  }

  static SvgPicture::Place BesideTick(const PlanPoint& at, const DrawingPoint& across,
                                      double azimuth, bool right, const TickStyle& style) {
    double rotation = std::remainder(azimuth * 180.0 / std::numbers::pi, 360.0);
    bool away = right;
    if (rotation > 90.0 || rotation <= -90.0) {
      rotation -= std::copysign(180.0, rotation);
      away = !away;
    }
    const double side = (right ? 1.0 : -1.0) * 1.6;
    SvgPicture::Place place;
    place.at = {at.easting + across.x * side, at.northing + across.y * side};
    place.style = {.size = style.textSize,
                   .color = style.color,
                   .anchor = away ? TextStyle::Anchor::Start : TextStyle::Anchor::End,
                   .rotation = rotation};
    place.dy = style.textSize * 0.35;
    return place;
  }

  // Beside its dot, on the side that is free.
  static void Mark(SvgPicture& picture, const PictureMark& mark) {
    using Anchor = TextStyle::Anchor;
    picture.Dot(OnDrawing(mark.at), 4.0, kFaultColor);
    std::vector<SvgPicture::Place> places;
    for (double aside = 0.0; aside < 80.0; aside += 13.0) {
      for (const double sign : {1.0, -1.0}) {
        for (const Anchor anchor : {Anchor::Start, Anchor::End}) {
          places.push_back({OnDrawing(mark.at),
                            {.color = kFaultColor, .anchor = anchor},
                            anchor == Anchor::Start ? 7.0 : -7.0,
                            4.0,
                            sign * aside});
        }
      }
    }
    (void)picture.TextWhereFree(mark.label, places);
  }

  void Equations(SvgPicture& picture) const {
    const StationEquations& equations = road_.equations;
    const auto text = [this](double station) {
      return FormatStation(station, style_.mode, style_.decimals);
    };
    for (std::size_t i = 0; i < equations.equations().size(); ++i) {
      const auto at = alignment_.PointAt(equations.At(i));
      const StationEquation& equation = equations.equations()[i];
      if (!at) continue;
      Tick(picture, at->at, at->azimuth,
           text(equation.back) + " BK = " + text(equation.ahead) + " AH",
           {kTickPixels * 2.6, kEquationColor, 10.0, true, 6});
    }
  }

  void RoundStations(SvgPicture& picture) const {
    const double length = alignment_.endStation() - alignment_.startStation();
    if (!(length > 0.0)) return;
    const double interval = RoundStep(std::max(length / 25.0, 35.0 / picture.PixelsPerUnit()));
    const auto stations =
        StakeStations(road_, nullptr, interval, alignment_.startStation(), alignment_.endStation());
    for (const double station : stations) {
      const double shown = road_.equations.Displayed(station).station;
      if (std::fabs(std::remainder(shown, interval)) > 1e-3) continue;
      const auto at = alignment_.PointAt(station);
      Tick(picture, at->at, at->azimuth, road_.equations.Text(station, style_.mode, 0),
           {kTickPixels, kQuiet, 10.0, true, 0});
    }
  }

  void KeyPoints(SvgPicture& picture) const {
    const auto& elements = alignment_.elements();
    for (std::size_t i = 0; i <= elements.size(); ++i) {
      const bool last = i == elements.size();
      const AlignmentElement& e = elements[last ? i - 1 : i];
      const std::size_t node = last ? e.toNode : e.fromNode;
      const std::string text =
          std::string(RecordName(road_.chain[node])) + " " +
          road_.equations.Text(road_.chain[node].station, style_.mode, style_.decimals);
      Tick(picture, NodeAt(node), last ? e.azimuthEnd : e.azimuthStart,
           elements.size() <= kMostNamedElements ? text : std::string(),
           {kTickPixels * 1.8, kTangentColor, 11.0, false, 6});
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
    const char* unit = unit_ == DistanceUnit::Metres         ? " m"
                       : unit_ == DistanceUnit::UsSurveyFeet ? " US ft"
                                                             : " ft";
    picture.PageText(20.0, y - 8.0, ShortestNumber(bar) + unit, {.size = 11.0});
    const double x = picture.width() - 30.0;
    picture.PageLine(x, 60.0, x, 22.0, {kTangentColor, 1.5});
    picture.PageLine(x - 5.0, 32.0, x, 22.0, {kTangentColor, 1.5});
    picture.PageLine(x + 5.0, 32.0, x, 22.0, {kTangentColor, 1.5});
    picture.PageText(x, 76.0, "N", {.size = 12.0, .anchor = TextStyle::Anchor::Middle});
  }

  const RoadGeometry& road_;
  const Alignment& alignment_;
  StationStyle style_;
  DistanceUnit unit_;
  std::span<const PictureMark> marks_;
  std::vector<std::vector<DrawingPoint>> lines_;
};

}  // namespace

std::string AlignmentPicture(const RoadGeometry& road, std::string_view title,
                             const PictureLook& look, std::span<const PictureMark> marks) {
  return AlignmentPainter(road, look, marks).Paint(title);
}

}  // namespace tarvex
