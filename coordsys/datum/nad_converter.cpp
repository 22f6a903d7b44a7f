#include "coordsys/datum/nad_converter.h"

#include "coordsys/datum/nad_converter_interface.h"
#include "core/string_table.h"
#include "core/units.h"

namespace tarvex {
namespace {

constexpr int kNotConverted = 2248;
constexpr int kLibraryMissing = 4150;
constexpr char kFolder[] = "NADConv/";

StepOutcome OutcomeOf(std::optional<int> result) {
  if (!result) return {StepStatus::LibraryMissing, kLibraryMissing};
  if (*result == 1) return {};
  return {StepStatus::Refused, kNotConverted};
}

}  // namespace

NadConverter::NadConverter(std::shared_ptr<ClosedLibrary> nadconv, std::string data_folder,
                           RunMessages* messages)
    : nadconv_(std::move(nadconv)),
      grid_folder_(std::move(data_folder) + kFolder),
      messages_(messages) {}

std::optional<int> NadConverter::Convert(const char* entry_name, Geodetic& position) const {
  NadConversionEntry* const entry = nadconv_->Entry<NadConversionEntry>(entry_name);
  if (entry == nullptr) return std::nullopt;
  double latitude = 0.0;
  double longitude = 0.0;
  const int result =
      entry(position.latitude_rad * kDegreesPerRadian, position.longitude_rad * kDegreesPerRadian,
            &latitude, &longitude, grid_folder_.c_str());
  if (result == 1) {
    position.latitude_rad = latitude * kRadiansPerDegree;
    position.longitude_rad = longitude * kRadiansPerDegree;
  } else if (messages_ != nullptr) {
    messages_->ShowOnce(kNotConverted);
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
  return Strings().Text(4156, {grids_, converter_->grid_folder()});
}

std::shared_ptr<ClosedLibrary> SystemNadConvLibrary() {
  static const auto library =
      std::make_shared<ClosedLibrary>("nadconv.dll", SystemRunTimeLibraries());
  return library;
}

}  // namespace tarvex
