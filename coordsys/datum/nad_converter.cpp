#include "coordsys/datum/nad_converter.h"

#include "coordsys/closed/nad_converter_interface.h"
#include "coordsys/coordsys_texts.h"
#include "core/text/string_table.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr char kFolder[] = "NADConv/";

StepOutcome OutcomeOf(std::optional<int> result) {
  if (!result) return {StepStatus::LibraryMissing, kTextShiftLibraryMissing};
  if (*result == 1) return {};
  return {StepStatus::Refused, kTextNotBetweenNad27AndNad83};
}

}  // namespace

NadConverter::NadConverter(std::shared_ptr<ClosedLibrary> nadconv, std::string dataFolder,
                           RunMessages* messages)
    : nadconv_(std::move(nadconv)),
      gridFolder_(std::move(dataFolder) + kFolder),
      messages_(messages) {}

std::optional<int> NadConverter::Convert(const char* entryName, Geodetic& position) const {
  NadConversionEntry* const entry = nadconv_->Entry<NadConversionEntry>(entryName);
  if (entry == nullptr) return std::nullopt;
  double latitude = 0.0;
  double longitude = 0.0;
  const int result =
      entry(position.latitudeRad * kDegreesPerRadian, position.longitudeRad * kDegreesPerRadian,
            &latitude, &longitude, gridFolder_.c_str());
  if (result == 1) {
    position.latitudeRad = latitude * kRadiansPerDegree;
    position.longitudeRad = longitude * kRadiansPerDegree;
  } else if (messages_ != nullptr) {
    messages_->ShowOnce(kTextNotBetweenNad27AndNad83);
  }
  return result;
}

std::optional<int> NadConverter::ToNad83(Geodetic& position) const {
  return Convert("ConvertNAD27ToNAD83", position);
}

std::optional<int> NadConverter::ToNad27(Geodetic& position) const {
  return Convert("ConvertNAD83ToNAD27", position);
}

void NadConverter::Close() const {
  NadCloseEntry* const close = nadconv_->EntryIfLoaded<NadCloseEntry>("CloseNADConverter");
  if (close != nullptr) close();
  nadconv_->Close();
}

StepOutcome NadShift::ToSystem(Geodetic& position) const {
  return OutcomeOf(converter_->ToNad27(position));
}

StepOutcome NadShift::ToWgs84(Geodetic& position) const {
  return OutcomeOf(converter_->ToNad83(position));
}

std::string NadShift::Describe() const {
  return Strings().Text(kTextNadconGrids, {grids_, converter_->gridFolder()});
}

std::shared_ptr<ClosedLibrary> SystemNadConvLibrary() {
  static const auto library =
      std::make_shared<ClosedLibrary>("nadconv.dll", SystemRunTimeLibraries());
  return library;
}

}  // namespace tarvex
