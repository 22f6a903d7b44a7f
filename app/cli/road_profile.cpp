#include "app/cli/road_profile.h"

#include <utility>

#include "app/workflow/job_session.h"
#include "core/text/number_text.h"
#include "exchange/landxml.h"

namespace tarvex {
namespace {

void WarnWhenBeside(Program& program, const LandXmlProfileReading& reading,
                    const StationSpan& road) {
  constexpr int kDecimals = 3;
  const double from = reading.profile->startStation();
  const double to = reading.profile->endStation();
  if (from <= road.end && to >= road.start) return;
  program.Warn("the profile of \"" + reading.alignment + "\" runs from " +
               FixedNumber(from, kDecimals) + " to " + FixedNumber(to, kDecimals) +
               ", the centerline from " + FixedNumber(road.start, kDecimals) + " to " +
               FixedNumber(road.end, kDecimals) + ": is it the profile of this road?");
}

}  // namespace

std::optional<Profile> OpenProfile(Program& program, const ProfileChoice& choice,
                                   DistanceUnit unitOfRoad, const StationSpan& road) {
  std::string text;
  const FileStatus status = ReadWholeFile(program.files, choice.file, kLargestLandXml, text);
  if (!status.ok()) {
    (void)program.Fail(choice.file + " cannot be read: " + status.Text() + ".");
    return std::nullopt;
  }
  const bool named = !choice.alignment.empty();
  LandXmlProfileReading reading = ReadLandXmlProfile(
      text, named ? std::optional<std::string_view>(choice.alignment) : std::nullopt);
  for (const std::string& warning : reading.warnings) program.Warn(choice.file + ": " + warning);
  if (reading.result == LandXmlResult::SeveralAlignments) {
    (void)program.Misuse(choice.file + ": " + reading.problem +
                         " Say whose profile is meant: --profile-alignment NAME.");
    return std::nullopt;
  }
  if (reading.result != LandXmlResult::Read) {
    (void)program.Fail(choice.file + ": " + reading.problem);
    return std::nullopt;
  }
  if (reading.unit != unitOfRoad) {
    (void)program.Fail(choice.file + " is in " + std::string(UnitName(reading.unit)) +
                       ", the centerline in " + std::string(UnitName(unitOfRoad)) + ".");
    return std::nullopt;
  }
  WarnWhenBeside(program, reading, road);
  return std::move(reading.profile);
}

}  // namespace tarvex
