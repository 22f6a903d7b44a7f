#include "app/cli/road_profile.h"

#include <utility>

#include "app/workflow/job_session.h"
#include "core/text/number_text.h"
#include "exchange/landxml.h"

namespace tarvex {
namespace {

void WarnWhenBeside(Program& program, const LandXmlProfile& found, const StationSpan& road) {
  constexpr int kDecimals = 3;
  const double from = found.profile.startStation();
  const double to = found.profile.endStation();
  if (from <= road.end && to >= road.start) return;
  program.Warn("the profile of \"" + found.alignment + "\" runs from " +
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
  auto found = ReadLandXmlProfile(
      text, named ? std::optional<std::string_view>(choice.alignment) : std::nullopt);
  if (!found) {
    const std::string problem = choice.file + ": " + found.failure().text;
    if (found.failure().code == LandXmlFault::SeveralAlignments) {
      (void)program.Misuse(problem + " Say whose profile is meant: --profile-alignment NAME.");
    } else {
      (void)program.Fail(problem);
    }
    return std::nullopt;
  }
  for (const std::string& warning : found->warnings) program.Warn(choice.file + ": " + warning);
  if (found->unit != unitOfRoad) {
    (void)program.Fail(choice.file + " is in " + std::string(UnitName(found->unit)) +
                       ", the centerline in " + std::string(UnitName(unitOfRoad)) + ".");
    return std::nullopt;
  }
  WarnWhenBeside(program, *found, road);
  return std::move(found->profile);
}

}  // namespace tarvex
