// The datum shifts that closed libraries compute.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <numbers>

#include "coordsys/closed/nad_converter_interface.h"
#include "coordsys/closed/seven_parameter_interface.h"
#include "coordsys/datum/nad_converter.h"
#include "coordsys/datum/seven_parameter_shift.h"
#include "core/text/string_table.h"
#include "tests/coordsys/case_table.h"
#include "tests/coordsys/scripted_libraries.h"
#include "tests/support/scratch_folder.h"

namespace tarvex {
namespace {

std::shared_ptr<ClosedLibrary> Module(const std::string& name) {
  AddRunTimeLibraryFolder(TARVEX_MODULE_FOLDER);
  return std::make_shared<ClosedLibrary>(name, SystemRunTimeLibraries());
}

constexpr Geodetic kBerlin = {0.9163, 0.2338, 84.0};
constexpr SevenParameters kGerman = {598.1, 73.7, 418.2, -0.202, -0.045, 2.455, 6.7};
constexpr Ellipsoid kBessel = {6377397.155, 0.00334277318217};

TEST(SevenParameterShift, TheModuleComputesWhatItsInterfaceSays) {
  const SevenParameterShift shift(kGerman, kBessel, Module("CoordSys.dll"));
  Geodetic at = kBerlin;
  ASSERT_EQ(shift.ToSystem(at).status, StepStatus::Done);
  const Geocentric wgs84 = GeocentricFrame(kWgs84).ToGeocentric(kBerlin);
  const Geodetic expected =
      GeocentricFrame(kBessel).ToGeodetic(TranslateUnrotateScale(InverseArguments(kGerman), wgs84));
  EXPECT_NEAR(at.latitudeRad, expected.latitudeRad, 1e-15);
  EXPECT_NEAR(at.longitudeRad, expected.longitudeRad, 1e-15);
  EXPECT_NEAR(at.heightM, expected.heightM, 5e-9);
  ASSERT_EQ(shift.ToWgs84(at).status, StepStatus::Done);
  EXPECT_NEAR(at.latitudeRad, kBerlin.latitudeRad, 1e-15);
  EXPECT_NEAR(at.heightM, kBerlin.heightM, 5e-9);
  EXPECT_THAT(shift.Describe(), testing::HasSubstr("598.1, 73.7, 418.2 m"));
}

// What the library was handed.
double handed[7];

int RecordForward(double dx, double dy, double dz, double rx, double ry, double rz, double scale,
                  double*, double*, double*) {
  const double all[7] = {dx, dy, dz, rx, ry, rz, scale};
  std::copy(std::begin(all), std::end(all), std::begin(handed));
  return 1;
}

int Unchanged(double, double, double, double, double, double, double, double*, double*, double*) {
  return 1;
}

TEST(SevenParameterShift, HandsTheLibraryRadiansAndAFactor) {
  ScriptedLibraries libraries;
  libraries.entries["xform_3D_7Param"] = reinterpret_cast<void*>(&RecordForward);
  libraries.entries["xform3D_Pt"] = reinterpret_cast<void*>(&Unchanged);
  const SevenParameters parameters = {1, 2, 3, 3600, 0, 0, 5};
  const auto library = std::make_shared<ClosedLibrary>("CoordSys.dll", libraries);
  const SevenParameterShift forward(parameters, kBessel, library);
  Geodetic at = kBerlin;
  EXPECT_EQ(forward.ToWgs84(at).status, StepStatus::Done);
  EXPECT_THAT(handed, testing::ElementsAre(1, 2, 3, std::numbers::pi / 180, 0, 0, 1.000005));
  libraries.entries["xform_3D_7Param"] = reinterpret_cast<void*>(&Unchanged);
  libraries.entries["xform3D_Pt"] = reinterpret_cast<void*>(&RecordForward);
  const SevenParameterShift inverse(parameters, kBessel,
                                    std::make_shared<ClosedLibrary>("CoordSys.dll", libraries));
  EXPECT_EQ(inverse.ToSystem(at).status, StepStatus::Done);
  EXPECT_THAT(handed,
              testing::ElementsAre(-1, -2, -3, -std::numbers::pi / 180, 0, 0, 1 / 1.000005));
}

TEST(SevenParameterShift, AMissingLibraryOrEntryLeavesThePosition) {
  ScriptedLibraries libraries;
  for (const bool loads : {false, true}) {
    libraries.loads = loads;
    libraries.loaded = 0;
    const SevenParameterShift shift(kGerman, kBessel,
                                    std::make_shared<ClosedLibrary>("CoordSys.dll", libraries));
    Geodetic at = kBerlin;
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(shift.ToSystem(at).status, StepStatus::LibraryMissing);
      EXPECT_EQ(shift.ToWgs84(at).status, StepStatus::LibraryMissing);
    }
    EXPECT_EQ(at, kBerlin);
    EXPECT_EQ(libraries.loaded, 1);
  }
}

// Each direction goes by its own entry point.
TEST(SevenParameterShift, AMissingEntryEndsOnlyItsOwnDirection) {
  ScriptedLibraries libraries;
  libraries.entries["xform3D_Pt"] = reinterpret_cast<void*>(&Unchanged);
  const SevenParameterShift shift(kGerman, kBessel,
                                  std::make_shared<ClosedLibrary>("CoordSys.dll", libraries));
  Geodetic at = kBerlin;
  EXPECT_EQ(shift.ToWgs84(at), (StepOutcome{StepStatus::LibraryMissing, 4150}));
  EXPECT_EQ(at, kBerlin);
  EXPECT_EQ(shift.ToSystem(at).status, StepStatus::Done);
}

// A data folder with the Texan cut of the grids as the continental one.
class NadFolder {
 public:
  NadFolder() {
    std::filesystem::create_directories(folder_.Path("NADConv"));
    for (const char* ending : {".las", ".los"}) {
      std::filesystem::copy_file(std::string(TARVEX_TEST_DATA) + "/datum/texas" + ending,
                                 folder_.Path("NADConv/conus") + ending,
                                 std::filesystem::copy_options::overwrite_existing);
    }
  }
  const std::string& path() const { return folder_.path(); }

 private:
  ScratchFolder folder_;
};

TEST(NadConverter, ConvertsThroughTheModule) {
  const NadFolder folder;
  const auto converter =
      std::make_shared<NadConverter>(Module("nadconv.dll"), folder.path(), nullptr);
  const NadShift shift(converter, "texas");
  for (int round = 0; round < 2; ++round) {
    for (const CaseRow& row : ReadCaseTable("datum/nadcon_points.tsv")) {
      Geodetic at = {row.Radians("lat_nad27"), row.Radians("lon_nad27"), 55.0};
      ASSERT_EQ(shift.ToWgs84(at).status, StepStatus::Done);
      EXPECT_NEAR(at.latitudeRad * kDegreesPerRadian, row.Number("lat_nad83"), 1e-9);
      EXPECT_NEAR(at.longitudeRad * kDegreesPerRadian, row.Number("lon_nad83"), 1e-9);
      EXPECT_EQ(at.heightM, 55.0);
      ASSERT_EQ(shift.ToSystem(at).status, StepStatus::Done);
      EXPECT_NEAR(at.latitudeRad, row.Radians("lat_nad27"), 1e-14);
    }
    converter->Close();  // the next round loads it afresh
  }
}

TEST(NadConverter, AFailureIsToldOnceInTheRunAndLeavesThePosition) {
  const NadFolder folder;
  CountedMessages box;
  RunMessages messages(&box);
  const NadShift here(
      std::make_shared<NadConverter>(Module("nadconv.dll"), folder.path(), &messages), "");
  const NadShift nowhere(
      std::make_shared<NadConverter>(Module("nadconv.dll"), "/nowhere/", &messages), "");
  for (int i = 0; i < 3; ++i) {
    Geodetic at = kBerlin;
    EXPECT_EQ(here.ToSystem(at).status, StepStatus::Refused);
    EXPECT_EQ(nowhere.ToWgs84(at).status, StepStatus::Refused);
    EXPECT_EQ(at, kBerlin);
  }
  EXPECT_THAT(box.texts, testing::ElementsAre(Strings().Text(2248)));
}

int closed = 0;
void CountClose() {
  ++closed;
}

TEST(NadConverter, ClosesTheLibraryAndRemembersAFailedLoad) {
  ScriptedLibraries libraries;
  libraries.entries["CloseNADConverter"] = reinterpret_cast<void*>(&CountClose);
  NadConverter converter(std::make_shared<ClosedLibrary>("nadconv.dll", libraries), "/data/",
                         nullptr);
  converter.Close();  // nothing is loaded, and nothing is for this
  EXPECT_EQ(libraries.loaded, 0);
  Geodetic at = kBerlin;
  EXPECT_FALSE(converter.ToNad83(at).has_value());  // no such entry
  converter.Close();
  EXPECT_EQ(closed, 1);
  EXPECT_FALSE(converter.ToNad27(at).has_value());
  EXPECT_EQ(libraries.loaded, 2);
  libraries.loads = false;
  NadConverter missing(std::make_shared<ClosedLibrary>("nadconv.dll", libraries), "/data/",
                       nullptr);
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(missing.ToNad83(at).has_value());
  EXPECT_EQ(libraries.loaded, 3);
}

}  // namespace
}  // namespace tarvex
