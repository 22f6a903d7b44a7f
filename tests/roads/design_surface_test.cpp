#include "roads/design_surface.h"
#include "roads/template_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "roads/template_file.h"
#include "tests/roads/road_data.h"

namespace tarvex {
namespace {

using Source = ElevationSource;

DesignSurface Surface() {
  DesignSurface surface;
  surface.profile = Profile::Make({{.station = 1000.0, .elevation = 100.0},
                                   {.station = 1400.0, .elevation = 104.0}})
                        .value();
  return surface;
}

void Expect(const DesignElevation& found, Source source, std::optional<double> elevation) {
  EXPECT_EQ(found.source, source) << ElevationSourceText(found.source);
  ASSERT_EQ(found.elevation.has_value(), elevation.has_value());
  if (elevation) {
    EXPECT_NEAR(*found.elevation, *elevation, 1e-9);
  }
}

TEST(DesignSurface, NeverCarriesTheCenterlineAcrossUnasked) {
  DesignSurface surface = Surface();
  Expect(surface.At(1200.0, 0.0), Source::Centerline, 102.0);
  Expect(surface.At(1200.0, -3.6), Source::NoTemplate, {});
  Expect(surface.At(999.0, 0.0), Source::OutsideProfile, {});
  surface.level = true;
  Expect(surface.At(1200.0, -3.6), Source::Level, 102.0);
  Expect(DesignSurface{}.At(1200.0, 0.0), Source::NoGrade, {});
  surface.entered = 55.5;
  Expect(surface.At(1200.0, -3.6), Source::Entered, 55.5);
}

// The section of the example over a grade of 100: EP -3.6, ES -5.4, EP 3.6 with a step to TC.
TEST(DesignSurface, FollowsTheTemplateAndItsSuperelevation) {
  DesignSurface surface = Surface();
  surface.section = ReadTemplate(ReadRoadData("section_example.tpl"));
  Expect(surface.At(1000.0, 0.0), Source::Surface, 100.0);
  Expect(surface.At(1000.0, -3.6), Source::Surface, 99.928);
  Expect(surface.At(1000.0, -4.5), Source::Surface, 99.892);
  Expect(surface.At(1200.0, -5.4), Source::Surface, 101.856);
  Expect(surface.At(1000.0, -5.41), Source::OutsideSurface, {});
  Expect(surface.At(1000.0, 3.6), Source::Surface, 99.928);
  EXPECT_NEAR(surface.At(1000.0, 3.6).step.value(), 100.078, 1e-9);
  EXPECT_FALSE(surface.At(1000.0, 3.7).step);
  Expect(surface.At(1000.0, 5.9), Source::Surface, 100.032);
  surface.superelevation = Superelevation{6.0, -6.0};
  Expect(surface.At(1000.0, -3.6), Source::Surface, 100.216);
  Expect(surface.At(1000.0, -5.4), Source::Surface, 100.198);
  Expect(surface.At(1000.0, 1.8), Source::Surface, 99.892);
  surface.entered = 50.0;  // the finished grade, under a template
  Expect(surface.At(1000.0, -3.6), Source::Surface, 50.216);
}

}  // namespace
}  // namespace tarvex
