// tarvex bases: the streams that a caster offers.
#include <algorithm>

#include "app/cli/command_line.h"
#include "app/cli/correction_choice.h"
#include "app/cli/json_text.h"
#include "app/cli/line_conversion.h"
#include "app/workflow/caster_connection.h"
#include "app/workflow/data_folder.h"
#include "core/text/number_text.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "gnss/ntrip/client.h"
#include "gnss/ntrip/known_casters.h"
#include "platform/private_folder.h"

namespace tarvex {
namespace {

struct BasesOptions {
  std::string caster;
  std::string passwordFile;
  std::string authorityFile;
  int ntripVersion = 0;
  std::string near;
  bool save = false;
  bool known = false;
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
  int Progress(int /*value*/, int /*minimum*/, int /*elapsedS*/) override {
    return InterruptRequested() ? 1 : 0;
  }
  void Status(std::string_view text) override { console_.ShowProgress(text); }

 private:
  Console& console_;
};

bool ParsePlace(const std::string& text, std::optional<Place>& place, std::string& problem) {
  if (text.empty()) return true;
  const auto position = ReadPosition(text);
  if (!position) {
    problem = position.failure().text;
    return false;
  }
  place = Place{position->values[0], position->values[1]};
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
      {"format_details", stream.formatDetails.view()},
      {"format_code", stream.formatCode},
      {"carrier", stream.carrier},
      {"nav_system", stream.navSystem.view()},
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
  LastErrorRecord errors(SystemLastError());
  const auto connection = MakeCasterConnection(caster, errors, InterruptRequested);
  const PrivateFolder folder;
  NtripClient client(connection.get(), "bases",
                     {.clock = program.clock,
                      .files = program.files,
                      .errors = errors,
                      .workFolder = folder.path()});
  list.current = caster;
  ConsoleProgress progress(program.console);
  const PortError error = client.LoadBases(list, progress);
  program.console.EndProgress();
  if (error == PortError::None) return ExitCode::Done;
  const std::string name = CasterName(caster);
  const std::string sentence = CasterFailureSentence(name, client.cause(), client.causeDetail());
  return program.Fail(sentence.starts_with(name) ? sentence : name + ": " + sentence);
}

Json StreamsJson(const std::vector<StreamRecord>& streams, const std::optional<Place>& place) {
  Json rows = Json::EmptyList();
  for (const StreamRecord& stream : streams) rows.Add(StreamJson(stream, place));
  return rows;
}

void PrintStreams(const std::vector<StreamRecord>& streams, const std::optional<Place>& place,
                  Program& program) {
  for (const StreamRecord& stream : streams) program.console.Print(StreamLine(stream, place));
}

std::string KnownPath(Program& program) {
  return DataFolder(program) + "casters.lst";
}

// False after a message; a list that is not there yet is empty.
bool ReadKnown(const std::string& path, Program& program, CasterList& known) {
  LastErrorRecord errors;
  if (!program.files.Exists(path) ||
      known.ReadTable(program.files, path, RecordOrigin::OwnList, errors) == PortError::None) {
    return true;
  }
  (void)program.Fail("The list of casters " + path + " cannot be read.");
  return false;
}

ExitCode Save(const CasterLogin& caster, const CasterList& offered, Program& program) {
  const std::string path = KnownPath(program);
  std::unique_ptr<File> file;
  FileStatus status = OpenLocked(program.files, path, FileAccess::CreateOrKeep, file);
  CasterList known;
  if (status.ok()) {
    if (!ReadKnown(path, program, known)) return ExitCode::Failed;
    if (!RememberCaster(caster, offered, known)) {
      return program.Fail("A host or user of more than 32 characters cannot be saved.");
    }
    status = ReplaceWholeFile(program.files, path, known.Text(), file);
  }
  if (!status.ok()) {
    return program.Fail("The list of casters " + path + " cannot be written: " + status.Text() +
                        ".");
  }
  program.console.PrintError("Saved " + std::to_string(offered.streams.size()) + " streams of " +
                             CasterName(caster) + " in " + path + ".\n");
  return ExitCode::Done;
}

bool IsAskedFor(const CasterLogin& known, const CasterLogin& asked) {
  return asked.host.empty() ||
         (EqualsIgnoringCase(known.host.view(), asked.host.view()) && known.port == asked.port);
}

// What is saved, of one caster or of all.
ExitCode ShowKnown(const BasesOptions& options, const CasterLogin& asked,
                   const std::optional<Place>& place, Program& program) {
  CasterList known;
  if (!ReadKnown(KnownPath(program), program, known)) return ExitCode::Failed;
  Json list = Json::EmptyList();
  bool found = false;
  for (const CasterRecord& caster : known.casters) {
    const CasterLogin login = LoginOf(caster);
    if (!IsAskedFor(login, asked)) continue;
    found = true;
    std::vector<StreamRecord> streams = StreamsOf(known, caster);
    if (place) SortByDistance(streams, *place);
    list.Add({{"caster", CasterName(login)},
              {"user", login.user},
              {"encrypted", login.encrypted},
              {"bases", StreamsJson(streams, place)}});
    if (options.json) continue;
    program.console.Print(PrintableLine(std::string(login.encrypted ? "ntrips://" : "") +
                                        (login.user.empty() ? "" : login.user + "@") +
                                        CasterName(login)) +
                          "\n");
    PrintStreams(streams, place, program);
  }
  if (options.json) {
    program.console.Print(JsonText({{"casters", list}}));
  } else if (!found) {
    return program.Fail("Nothing of it is saved: bases CASTER --save keeps what a caster offers.");
  }
  return ExitCode::Done;
}

ExitCode ShowOffered(const BasesOptions& options, const CasterLogin& caster,
                     const std::optional<Place>& place, Program& program) {
  CasterList list;
  if (const ExitCode code = FetchBases(caster, program, list); code != ExitCode::Done) return code;
  if (place) SortByDistance(list.streams, *place);
  if (options.json) {
    program.console.Print(JsonText({{"caster", CasterName(caster)},
                                    {"complete", list.complete},
                                    {"bases", StreamsJson(list.streams, place)}}));
  } else {
    PrintStreams(list.streams, place, program);
  }
  if (!list.complete) {
    return program.Fail(
        "The caster broke its list off before its end mark: streams may be missing.");
  }
  if (list.streams.empty() && !options.json) return program.Fail("The caster offers no streams.");
  return options.save ? Save(caster, list, program) : ExitCode::Done;
}

ExitCode RunBases(const BasesOptions& options, Program& program) {
  CasterLogin caster;
  std::optional<Place> place;
  std::string problem = "Give the caster: tarvex bases [USER@]HOST[:PORT].";
  const bool all = options.known && options.caster.empty();
  if (!all && (options.caster.empty() || !ParseCaster(options.caster, caster, problem))) {
    return program.Misuse(problem);
  }
  if (options.known && options.save) return program.Misuse("Give --save or --known, not both.");
  if (!ParsePlace(options.near, place, problem)) {
    return program.Misuse("\"" + options.near + "\" is not a position: " + problem +
                          " (LATITUDE,LONGITUDE in degrees).");
  }
  if (options.known) return ShowKnown(options, caster, place, program);
  if (!SettleCaster(options.authorityFile, options.ntripVersion, caster, problem) ||
      !FindPassword(options.passwordFile, caster, problem)) {
    return program.Misuse(problem);
  }
  return ShowOffered(options, caster, place, program);
}

}  // namespace

void DeclareBasesCommand(Command& command) {
  BasesOptions& options = command.Runs(RunBases);
  command.Footer("Example: tarvex bases caster.example:2101 --near 46.81,9.27");
  command.Add("CASTER", options.caster,
              "[USER@]HOST[:PORT]: the caster (port 2101 by default); ntrips:// in front for an\n"
              "encrypted one (port 443 by default)");
  AddPasswordOption(command, options.passwordFile);
  AddAuthorityOption(command, options.authorityFile);
  AddVersionOption(command, options.ntripVersion);
  command
      .Add("--near", options.near,
           "LATITUDE,LONGITUDE: the nearest bases first, with their distance")
      .ValueName("LAT,LON");
  command.AddFlag("--save", options.save,
                  "Keep what the caster offers, for where there is no network");
  command.AddFlag("--known", options.known,
                  "List what is kept, of this caster or of all, without a network");
  command.AddFlag("--json", options.json, "Print JSON");
}

}  // namespace tarvex
