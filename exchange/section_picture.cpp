#include <algorithm>
#include <cmath>

#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "exchange/exchange_texts.h"
#include "exchange/road_picture.h"
#include "exchange/svg.h"
#include "roads/catch_point.h"
#include "roads/stakeout.h"

namespace tarvex {
namespace {

constexpr double kPageWidth = 1000.0;
constexpr double kMargin = 125.0;
constexpr double kBeyond = 2.0;  // ground shown beyond the outermost point
constexpr std::string_view kRoadColor = "#1f5fbf";
constexpr std::string_view kSlopeColor = "#15803d";
constexpr std::string_view kGroundColor = "#8a5a2b";
constexpr std::string_view kQuiet = "#777777";

class SectionPainter {
 public:
  SectionPainter(const DesignSection& design, const SectionSide& left, const SectionSide& right)
      : design_(design) {
    for (const SectionPoint& point : design.points)
      road_.push_back({point.offset, point.elevation});
    slopes_[0] = Slope(left, -1.0);
    slopes_[1] = Slope(right, 1.0);
    const double reach = Reach() + kBeyond;
    Ground(left, -1.0, reach);
    Ground(right, 1.0, reach);
    sides_[0] = &left;
    sides_[1] = &right;
  }

  std::string Paint(std::string_view title) {
    const DrawingBox box = Extent();
    const double wide = box.right - box.left;
    const double high = std::max(box.top - box.bottom, 0.1);
    // Flat roads would be a line: heights are drawn larger, and the picture says how much.
    const double stretch = std::clamp(std::floor(wide / (4.0 * high)), 1.0, 5.0);
    SvgPicture picture(box, kPageWidth, kMargin, stretch);
    for (const auto& ground : grounds_) picture.Line(ground, {kGroundColor, 1.8, true});
    const DrawingPoint axis[] = {{0.0, box.bottom}, {0.0, box.top}};
    picture.Line(axis, {kQuiet, 1.0, true});
    for (const auto& slope : slopes_) {
      if (slope.size() > 1) picture.Line(slope, {kSlopeColor, 2.2});
    }
    picture.Line(road_, {kRoadColor, 2.8});
    picture.PageText(20.0, 28.0, title, {.size = 16.0});
    Catches(picture);
    Points(picture);
    const std::string scale = Strings().Text(stretch == 1.0 ? kTextOneScale : kTextHeightsStretched,
                                             {FixedNumber(stretch, 0)});
    picture.PageText(20.0, picture.height() - 16.0, scale, {.size = 11.0, .color = kQuiet});
    return picture.Finish(title);
  }

 private:
  static std::vector<DrawingPoint> Slope(const SectionSide& side, double sign) {
    if (!side.caught || side.caught->result != CatchResult::Caught) return {};
    const CatchPoint& caught = *side.caught;
    std::vector<DrawingPoint> line{{sign * caught.hingeOffset, caught.hingeElevation}};
    for (const SectionPoint& p : caught.between) line.push_back({sign * p.offset, p.elevation});
    for (const SectionPoint& p : caught.breaks) line.push_back({sign * p.offset, p.elevation});
    line.push_back({sign * caught.offset, caught.elevation});
    return line;
  }

  double Reach() const {
    double reach = 0.0;
    for (const DrawingPoint& p : road_) reach = std::max(reach, std::fabs(p.x));
    for (const auto& slope : slopes_) {
      for (const DrawingPoint& p : slope) reach = std::max(reach, std::fabs(p.x));
    }
    return reach;
  }

  void Ground(const SectionSide& side, double sign, double reach) {
    if (!side.ground) return;
    constexpr int kParts = 200;
    std::vector<DrawingPoint> line;
    for (int i = 0; i <= kParts; ++i) {
      const double offset = reach * i / kParts;
      if (const auto level = side.ground->At(offset)) line.push_back({sign * offset, *level});
    }
    if (line.size() > 1) grounds_.push_back(std::move(line));
  }

  DrawingBox Extent() const {
    DrawingBox box;
    box.Take(road_.front(), true);
    const auto take = [&box](const std::vector<DrawingPoint>& line) {
      for (const DrawingPoint& p : line) box.Take(p, false);
    };
    take(road_);
    for (const auto& slope : slopes_) take(slope);
    for (const auto& ground : grounds_) take(ground);
    return box;
  }

  // Names above the road where there is room for them; offset and elevation below.
  void Points(SvgPicture& picture) const {
    using Anchor = TextStyle::Anchor;
    for (std::size_t i = 0; i < road_.size(); ++i) {
      picture.Dot(road_[i], 2.6, kRoadColor);
      const SectionPoint& point = design_.points[i];
      std::vector<SvgPicture::Place> above;
      for (double up = -10.0; up > -60.0; up -= 13.0) {
        above.push_back(
            {road_[i], {.size = 11.0, .color = kRoadColor, .anchor = Anchor::Middle}, 0.0, up});
      }
      (void)picture.TextWhereFree(point.description, above);
      const SvgPicture::Place below{
          road_[i], {.size = 10.0, .color = kQuiet, .rotation = 60.0}, 2.0, 16.0};
      (void)picture.TextWhereFree(
          OffsetText(point.offset, 2) + "  " + FixedNumber(point.elevation, 3), {&below, 1});
    }
  }

  void Catches(SvgPicture& picture) const {
    for (int side = 0; side < 2; ++side) {
      if (slopes_[side].empty()) continue;
      const CatchPoint& caught = *sides_[side]->caught;
      const DrawingPoint at = slopes_[side].back();
      const std::string kind =
          Strings().Text(caught.kind == EarthworkKind::Cut ? kTextCut : kTextFill) + " ";
      picture.Dot(at, 4.5, kSlopeColor);
      CatchText(picture, side, at, kind + ShortestNumber(caught.ratio) + ":1", -26.0);
      CatchText(picture, side, at, OffsetText(at.x, 2) + "  " + FixedNumber(at.y, 3), -11.0);
    }
  }

  // Away from the road, above the ground.
  static void CatchText(SvgPicture& picture, int side, const DrawingPoint& at,
                        const std::string& text, double up) {
    constexpr int kPlaces = 6;
    std::vector<SvgPicture::Place> places;
    places.reserve(kPlaces);
    for (int step = 0; step < kPlaces; ++step) {
      places.push_back({at,
                        {.size = 11.0,
                         .color = kSlopeColor,
                         .anchor = side == 0 ? TextStyle::Anchor::End : TextStyle::Anchor::Start},
                        side == 0 ? -8.0 : 8.0,
                        up - 28.0 * step});
    }
    (void)picture.TextWhereFree(text, places);
  }

  const DesignSection& design_;
  std::vector<DrawingPoint> road_;
  std::vector<DrawingPoint> slopes_[2];
  std::vector<std::vector<DrawingPoint>> grounds_;
  const SectionSide* sides_[2] = {nullptr, nullptr};
};

}  // namespace

std::string SectionPicture(const DesignSection& design, const SectionSide& left,
                           const SectionSide& right, std::string_view title) {
  return SectionPainter(design, left, right).Paint(title);
}

}  // namespace tarvex
