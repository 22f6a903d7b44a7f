// The satellites of a sky: in view by GSV, in use by GSA, of each system.
#include "gnss/nmea/sky_view.h"

#include <gtest/gtest.h>

#include "gnss/receivers/receiver_settings.h"

namespace tarvex {
namespace {

std::string CountsOf(const SkyView& sky, std::int64_t nowMs) {
  std::string text;
  for (const SystemCount& count : sky.Counts(nowMs)) {
    text +=
        count.system + " " + std::to_string(count.inUse) + "/" + std::to_string(count.inView) + " ";
  }
  return text;
}

TEST(SkyView, CountsTheSatellitesOfEachSystem) {
  SkyView sky;
  for (const std::string_view line :
       {"$GPGSV,1,1,03,02,57,277,45,05,40,100,41,09,12,030,",
        "$GLGSV,1,1,02,65,20,100,40,66,30,200,41", "$GAGSV,1,1,01,07,50,120,44",
        "$GNGSA,A,3,02,05,,,,,,,,,,,1.5,0.8,1.2,1", "$GNGSA,A,3,07,,,,,,,,,,,,1.5,0.8,1.2,3",
        "$GNGSA,A,3,65,,,,,,,,,,,,1.5,0.8,1.2", "$GPGGA,123519"}) {
    sky.OnLine(line, 1000);
  }
  EXPECT_EQ(CountsOf(sky, 1000), "GA 1/1 GL 1/2 GP 2/3 ");
  EXPECT_EQ(CountsOf(sky, 4000), "GA 0/1 GL 0/2 GP 0/3 ") << "no longer told to be in use";
  EXPECT_EQ(sky.InView(1000).size(), 6U);
  sky.ShowOnly(kSatelliteGps | kSatelliteGalileo);
  EXPECT_EQ(CountsOf(sky, 1000), "GA 1/1 GP 2/3 ");
  EXPECT_EQ(sky.InView(1000).size(), 4U);
  EXPECT_TRUE(sky.InView(7000).empty());
}

}  // namespace
}  // namespace tarvex
