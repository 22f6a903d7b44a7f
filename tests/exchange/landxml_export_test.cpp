// What goes out as LandXML, as another program would take it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "core/text/number_text.h"
#include "exchange/landxml.h"
#include "platform/file.h"
#include "roads/centerline_reader.h"
#include "roads/centerline_writer.h"
#include "tests/exchange/landxml_judge.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

using testing::IsEmpty;

constexpr LocalTime kWritten{2026, 1, 31, 9, 5, 7};

std::string Exported(const RoadGeometry& road, const Profile* profile = nullptr) {
  auto text = WriteLandXml({.name = "road",
                            .unit = DistanceUnit::Metres,
                            .road = &road,
                            .profile = profile,
                            .program = "Tarvex",
                            .written = kWritten});
  EXPECT_TRUE(text) << "element " << text.failure().place << " was refused";
  return std::move(text).value();
}

// One element to lay out: the curvature at its ends (right positive) and its length.
struct Leg {
  double k0 = 0.0;
  double k1 = 0.0;
  double length = 0.0;
};

struct Pen {
  double north = 5184600.0;
  double east = 520300.0;
  double azimuth = 0.0;
  double station = 1000.0;

  // By Simpson's rule, so that the library's own spirals are not what they are held against.
  void Draw(const Leg& leg) {
    constexpr int kSteps = 2000;
    const double step = leg.length / kSteps;
    double toNorth = 0.0;  // from the start: small numbers keep their digits
    double toEast = 0.0;
    const auto direction = [&](double s) {
      return azimuth + leg.k0 * s + 0.5 * (leg.k1 - leg.k0) * s * s / leg.length;
    };
    for (int i = 0; i < kSteps; ++i) {
      const double a = direction(i * step);
      const double b = direction((i + 0.5) * step);
      const double c = direction((i + 1) * step);
      toNorth += step / 6.0 * (std::cos(a) + 4.0 * std::cos(b) + std::cos(c));
      toEast += step / 6.0 * (std::sin(a) + 4.0 * std::sin(b) + std::sin(c));
    }
    north += toNorth;
    east += toEast;
    azimuth = direction(leg.length);
    station += leg.length;
  }

  CenterlineElement KeyPoint(KeyPointKind kind) const {
    CenterlineElement element;
    element.record = kind;
    element.northing = north;
    element.easting = east;
    element.station = station;
    return element;
  }
};

void SetCentre(CenterlineElement& element, const Pen& at, double k, double sweep) {
  const double across = at.azimuth + std::copysign(0.5 * std::numbers::pi, k);
  element.centerNorthing = at.north + std::cos(across) / std::fabs(k);
  element.centerEasting = at.east + std::sin(across) / std::fabs(k);
  element.angle = sweep;
}

// Tangent, spiral, arc, spiral, tangent, as the records of a centerline file.
Centerline SpiralCurveSpiral(double azimuth, double k, double in, double arc, double out) {
  Centerline centerline;
  auto& list = centerline.elements;
  Pen pen;
  pen.azimuth = azimuth;
  list.push_back(pen.KeyPoint(KeyPointKind::Line));
  pen.Draw({0.0, 0.0, 100.0});
  list.push_back(pen.KeyPoint(KeyPointKind::TangentSpiral));
  pen.Draw({0.0, k, in});
  list.push_back(pen.KeyPoint(KeyPointKind::SpiralCurve));
  SetCentre(list[1], pen, k, k * arc);
  SetCentre(list[2], pen, k, k * arc);
  pen.Draw({k, k, arc});
  list.push_back(pen.KeyPoint(KeyPointKind::CurveSpiral));
  pen.Draw({k, 0.0, out});
  list.push_back(pen.KeyPoint(KeyPointKind::SpiralTangent));
  pen.Draw({0.0, 0.0, 100.0});
  list.push_back(pen.KeyPoint(KeyPointKind::Line));
  return centerline;
}

// The road that the file of these records gives, with the decimals of the format.
RoadGeometry FromFile(const Centerline& written, const CenterlineFormat& format) {
  Centerline centerline;
  centerline.elements = ReadChain(CenterlineText(written, {}, format), false)->elements;
  return MakeRoadGeometry(centerline, {}).value();
}

TEST(LandXmlExport, EveryTextbookCurveGoesOut) {
  for (const CenterlineFormat& format : {kPlainCenterline, kExactCenterline}) {
    for (const double radius : {100.0, 150.0, 300.0, 600.0}) {
      for (const double spiral : {30.0, 40.0, 50.0, 60.0, 90.0}) {
        for (const double turn : {1.0, -1.0}) {
          const RoadGeometry road =
              FromFile(SpiralCurveSpiral(1.0472, turn / radius, spiral, 80.0, spiral), format);
          EXPECT_THAT(FaultsOfLandXml(Exported(road)), IsEmpty()) << radius << " " << spiral;
        }
      }
    }
  }
}

TEST(LandXmlExport, RandomRoadsGoOutAsAnotherProgramReadsThem) {
  RandomNumbers random(20260131);
  const auto between = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  for (int i = 0; i < 300; ++i) {
    const double k = (i % 2 == 0 ? 1.0 : -1.0) / between(40.0, 1500.0);
    const double in = between(5.0, 1.5 / std::fabs(k));
    const double out = between(5.0, 1.5 / std::fabs(k));
    const double arc = between(1.0, 1.0 / std::fabs(k));
    const RoadGeometry road = FromFile(SpiralCurveSpiral(between(-3.1, 3.1), k, in, arc, out),
                                       i % 3 == 0 ? kPlainCenterline : kExactCenterline);
    const auto faults = FaultsOfLandXml(Exported(road));
    EXPECT_THAT(faults, IsEmpty()) << "road " << i;
    if (!faults.empty()) return;
  }
}

// A spiral that relaxes from a curve to straight ends at exactly 0 though the file's radius, A and
// stations are rounded.
TEST(LandXmlExport, SpiralRecordsEndStraight) {
  int checked = 0;
  for (const int decimals : {3, 5, 6}) {
    for (double radius = 60.0; radius < 1200.0; radius *= 1.37) {
      for (const double length : {35.0, 60.0, 77.7}) {
        Pen pen;
        pen.azimuth = 0.3 + radius;
        Centerline centerline;
        CenterlineElement spiral = pen.KeyPoint(KeyPointKind::Spiral);
        spiral.radius = radius;
        spiral.spiralParameter = std::sqrt(radius * length);
        spiral.angle = checked % 2 == 0 ? 2.0 : -2.0;
        pen.Draw({(checked % 2 == 0 ? 1.0 : -1.0) / radius, 0.0, length});
        centerline.elements = {spiral, pen.KeyPoint(KeyPointKind::Line)};
        pen.Draw({0.0, 0.0, 50.0});
        centerline.elements.push_back(pen.KeyPoint(KeyPointKind::Line));
        const RoadGeometry road = FromFile(centerline, {.stationDecimals = decimals});
        const AlignmentElement& element = road.alignment.elements().front();
        ASSERT_EQ(element.shape, ElementShape::Spiral) << radius << " " << length;
        EXPECT_EQ(element.curvatureEnd, 0.0) << radius << " " << length;
        EXPECT_THAT(FaultsOfLandXml(Exported(road)), IsEmpty());
        ++checked;
      }
    }
  }
  EXPECT_GT(checked, 50);
}

TEST(LandXmlExport, RealFilesGoOutAsAnotherProgramReadsThem) {
  for (const char* file : {"indot_ftus_arc_paracurves.xml", "toivola_arcs_circcurves.xml",
                           "toivola_y3.xml", "scs_station_equation.xml"}) {
    std::string text;
    ASSERT_TRUE(ReadWholeFile(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/landxml/" + file,
                              1 << 20, text)
                    .ok());
    const auto document = ReadLandXml(text);
    ASSERT_TRUE(document) << document.failure().text;
    ASSERT_EQ(document->alignments.size(), 1U) << file;
    const LandXmlAlignment& alignment = document->alignments.front();
    const RoadGeometry road = MakeRoadGeometry(alignment.centerline, alignment.equations).value();
    EXPECT_THAT(FaultsOfLandXml(Exported(road, alignment.profile ? &*alignment.profile : nullptr)),
                IsEmpty())
        << file;
  }
}

TEST(LandXmlExport, CarriesDateAndTime) {
  const RoadGeometry road =
      FromFile(SpiralCurveSpiral(0.1, 0.01, 40.0, 50.0, 40.0), kExactCenterline);
  EXPECT_THAT(Exported(road), testing::HasSubstr("date=\"2026-01-31\" time=\"09:05:07\""));
}

// The judge itself sees what other programs would trip over.
TEST(LandXmlJudge, SeesWhatIsWrong) {
  const std::string good =
      Exported(FromFile(SpiralCurveSpiral(0.1, 0.01, 40.0, 50.0, 30.0), kExactCenterline));
  ASSERT_THAT(FaultsOfLandXml(good), IsEmpty());
  const std::pair<const char*, const char*> changes[] = {
      {"rot=\"cw\" crvType", "rot=\"ccw\" crvType"},
      {"rot=\"cw\" radiusStart", "rot=\"ccw\" radiusStart"},
      {"delta=\"28", "delta=\"29"},
      {"radiusEnd=\"INF\"", "radiusEnd=\"4611686018427387904.00000000\""},
      {" time=\"", " when=\""},
      {"constant=\"6", "constant=\"7"},
      {"staStart=\"1190", "staStart=\"1191"},
      {"<PI>", "<IP>"},
  };
  for (const auto& [from, to] : changes) {
    std::string changed = good;
    const std::size_t at = changed.find(from);
    ASSERT_NE(at, std::string::npos) << from << "\n" << good;
    changed.replace(at, std::string(from).size(), to);
    if (std::string(from) == "<PI>") changed.replace(changed.find("</PI>"), 5, "</IP>");
    EXPECT_FALSE(FaultsOfLandXml(changed).empty()) << from;
  }
}

std::string WithEquations(const std::string& equations) {
  return "<LandXML><Units><Metric linearUnit='meter'/></Units><Alignments>"
         "<Alignment name='a' length='900' staStart='1000'><CoordGeom>"
         "<Line><Start>0 0</Start><End>900 0</End></Line></CoordGeom>" +
         equations + "</Alignment></Alignments></LandXML>";
}

// Two equations: the second one's back station counts on from the first.
TEST(LandXmlExport, StationEquationsAddUp) {
  for (const char* back : {"staBack='1400'", ""}) {
    const auto document =
        ReadLandXml(WithEquations("<StaEquation staBack='1250' staAhead='1300' staInternal='1250'/>"
                                  "<StaEquation " +
                                  std::string(back) + " staAhead='1700' staInternal='1350'/>"));
    ASSERT_TRUE(document) << document.failure().text;
    EXPECT_THAT(document->warnings, IsEmpty());
    const LandXmlAlignment& alignment = document->alignments.at(0);
    const std::vector<StationEquation> wanted = {{1250.0, 1300.0}, {1400.0, 1700.0}};
    EXPECT_EQ(alignment.equations, wanted) << back;
    const RoadGeometry road = MakeRoadGeometry(alignment.centerline, alignment.equations).value();
    EXPECT_EQ(road.equations.Displayed(1340.0).station, 1390.0);
    EXPECT_EQ(road.equations.Displayed(1360.0).station, 1710.0);
    EXPECT_THAT(FaultsOfLandXml(Exported(road)), IsEmpty());
    EXPECT_EQ(ReadLandXml(Exported(road))->alignments.at(0).equations, wanted);
  }
}

}  // namespace
}  // namespace tarvex
