// tarvex bases: the streams that a caster offers.
#include <algorithm>

#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/correction_choice.h"
#include "app/cli/json_text.h"
#include "core/number_text.h"
#include "core/printable.h"
#include "core/text.h"
#include "gnss/ntrip/client.h"
#include "platform/private_folder.h"

namespace tarvex {
namespace {

struct BasesOptions {
  std::string caster;
  std::string password_file;
  std::string near;
  bool json = false;
};

struct Place {
  double latitude = 0.0;
  double longitude = 0.0;
};

// Shows what is done and lets Ctrl-C end it.
class ConsoleProgress final : public NtripProgress {
 public:
  explicit ConsoleProgress(Console& console) : console_(console) {}
  int Progress(int /*value*/, int /*minimum*/, int /*elapsed_s*/) override {
    return InterruptRequested() ? 1 : 0;
  }
  void Status(std::string_view text) override { console_.ShowProgress(text); }

 private:
  Console& console_;
};

bool ParsePlace(const std::string& text, std::optional<Place>& place) {
  if (text.empty()) return true;
  const std::size_t comma = text.find(',');
  if (comma == std::string::npos) return false;
  const auto latitude = ParseNumber(text.substr(0, comma));
  const auto longitude = ParseNumber(text.substr(comma + 1));
  if (!latitude || !longitude || *latitude < -90.0 || *latitude > 90.0 || *longitude < -180.0 ||
      *longitude > 360.0) {
    return false;
  }
  place = Place{*latitude, *longitude};
  return true;
}

void SortByDistance(std::vector<StreamRecord>& streams, const Place& place) {
  std::stable_sort(streams.begin(), streams.end(),
                   [&place](const StreamRecord& a, const StreamRecord& b) {
                     return DistanceKm(a, place.latitude, place.longitude) <
                            DistanceKm(b, place.latitude, place.longitude);
                   });
}

Json StreamJson(const StreamRecord& stream, const std::optional<Place>& place) {
  Json json = {
      {"mountpoint", stream.mountpoint.view()},
      {"identifier", stream.identifier.view()},
      {"format", stream.format.view()},
      {"format_details", stream.format_details.view()},
      {"format_code", stream.format_code},
      {"carrier", stream.carrier},
      {"nav_system", stream.nav_system.view()},
      {"network", stream.network.view()},
      {"country", stream.country.view()},
      {"latitude", stream.latitude},
      {"longitude", stream.longitude},
      {"needs_gga", stream.nmea},
      {"network_solution", stream.solution},
      {"generator", stream.generator.view()},
      {"compression", stream.compression.view()},
      {"authentication", std::string(stream.authentication == '\0' ? 0 : 1, stream.authentication)},
      {"fee", stream.fee},
      {"bitrate", stream.bitrate},
      {"misc", stream.misc.view()}};
  if (place) json["distance_km"] = DistanceKm(stream, place->latitude, place->longitude);
  return json;
}

std::string StreamLine(const StreamRecord& stream, const std::optional<Place>& place) {
  std::string line = stream.mountpoint.str();
  line.resize(std::max<std::size_t>(line.size(), 20), ' ');
  line += " " + stream.format.str();
  line.resize(std::max<std::size_t>(line.size(), 34), ' ');
  std::string position = StreamPositionText(stream);
  if (stream.country.empty()) position.erase(position.rfind(", "));
  line += " " + std::string(WithoutOuterBlanks(position));
  if (place) {
    line += ", " + FixedNumber(DistanceKm(stream, place->latitude, place->longitude), 1) + " km";
  }
  if (stream.nmea) line += ", needs your position";
  return PrintableLine(line) + "\n";
}

ExitCode FetchBases(const CasterLogin& caster, Program& program, CasterList& list) {
  LastErrorRecord errors;
  const auto connection = MakeTcpNtripConnection(errors, InterruptRequested);
  const PrivateFolder folder;
  NtripClient client(connection.get(), "bases",
                     {.clock = program.clock,
                      .files = program.files,
                      .errors = errors,
                      .work_folder = folder.path()});
  list.current = caster;
  ConsoleProgress progress(program.console);
  const PortError error = client.LoadBases(list, progress);
  program.console.EndProgress();
  if (error == PortError::None) return ExitCode::Done;
  const std::string name = CasterName(caster);
  const std::string sentence = CasterFailureSentence(name, client.cause(), client.cause_detail());
  return program.Fail(sentence.starts_with(name) ? sentence : name + ": " + sentence);
}

ExitCode RunBases(const BasesOptions& options, Program& program) {
  CasterLogin caster;
  std::optional<Place> place;
  std::string problem;
  if (!ParseCaster(options.caster, caster, problem) ||
      !FindPassword(options.password_file, caster, problem)) {
    return program.Misuse(problem);
  }
  if (!ParsePlace(options.near, place)) {
    return program.Misuse("\"" + options.near +
                          "\" is no position: give LATITUDE,LONGITUDE in decimal degrees.");
  }
  CasterList list;
  if (const ExitCode code = FetchBases(caster, program, list); code != ExitCode::Done) return code;
  if (place) SortByDistance(list.streams, *place);
  if (options.json) {
    Json rows = Json::array();
    for (const StreamRecord& stream : list.streams) rows.push_back(StreamJson(stream, place));
    program.console.Print(
        JsonText({{"caster", CasterName(caster)}, {"complete", list.complete}, {"bases", rows}}));
  } else {
    for (const StreamRecord& stream : list.streams) {
      program.console.Print(StreamLine(stream, place));
    }
  }
  if (!list.complete) {
    return program.Fail("The caster broke its list off before the end: streams are missing.");
  }
  if (list.streams.empty() && !options.json) return program.Fail("The caster offers no streams.");
  return ExitCode::Done;
}

}  // namespace

void AddBasesCommand(CLI::App& app, Program& program) {
  Command<BasesOptions> command(app, program, "bases", "List the correction streams of a caster",
                                RunBases);
  command.sub.footer("Example: tarvex bases caster.example:2101 --near 46.81,9.27");
  command.sub
      .add_option("CASTER", command.options->caster,
                  "[USER@]HOST[:PORT]: the caster (port 2101 by default)")
      ->required();
  AddPasswordOption(command.sub, command.options->password_file);
  command.sub.add_option("--near", command.options->near,
                         "LATITUDE,LONGITUDE: the nearest bases first, with their distance");
  command.sub.add_flag("--json", command.options->json, "Print JSON");
}

}  // namespace tarvex
