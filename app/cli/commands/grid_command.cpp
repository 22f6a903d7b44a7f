// tarvex grid: what a shift grid or geoid file is, and agencies' grids into the program's own form.
#include "app/cli/command_line.h"
#include "app/cli/grid_text.h"
#include "app/cli/load_bar.h"
#include "app/workflow/data_folder.h"
#include "coordsys/grids/packed_grid.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestText = 512u << 20;
constexpr const char* kPackFirst = " A text of an agency is packed first: tarvex grid pack.";

struct GridInfoOptions {
  std::vector<std::string> files;
  bool json = false;
};

struct GridPackOptions {
  std::string text;
  std::string folder;
  bool json = false;
};

// Prints what the files are; the ones that cannot be read are named and fail the command.
ExitCode TellFiles(const std::vector<std::string>& paths, bool asJson, Program& program) {
  LoadBar bar(program.console);
  ExitCode exitCode = ExitCode::Done;
  Json list = Json::EmptyList();
  for (const std::string& path : paths) {
    GridFileInfo info;
    const GridStatus status = ReadGridFileInfo(program.files, path, &bar, info);
    program.console.EndProgress();
    if (!status.ok()) {
      const bool text = status.problem == GridProblem::NotThisFormat && path.ends_with(".txt");
      exitCode = program.Fail(status.Text() + (text ? kPackFirst : ""));
    } else if (asJson) {
      list.Add(GridFileJson(path, info));
    } else {
      program.console.Print(GridFileText(path, info));
    }
  }
  if (asJson) program.console.Print(JsonText({{"files", std::move(list)}}));
  return exitCode;
}

// A name without a folder that is not here is looked for where the program looks for grids.
ExitCode RunGridInfo(const GridInfoOptions& options, Program& program) {
  std::vector<std::string> paths = options.files;
  for (std::string& path : paths) {
    if (path.find('/') == std::string::npos && !program.files.Exists(path)) {
      const std::string inDataFolder = DataFolder(program) + path;
      if (program.files.Exists(inDataFolder)) path = inDataFolder;
    }
  }
  return TellFiles(paths, options.json, program);
}

ExitCode RunGridPack(const GridPackOptions& options, Program& program) {
  std::string folder = options.folder.empty() ? DataFolder(program) : options.folder;
  if (!folder.ends_with('/')) folder += '/';
  std::string text;
  if (FileStatus status = ReadWholeFile(program.files, options.text, kLargestText, text);
      !status.ok()) {
    return program.Fail("The text " + options.text + " cannot be read: " + status.Text() + ".");
  }
  LoadBar bar(program.console);
  std::vector<PackedFile> packed;
  const GridStatus made = PackGrid(text, options.text, folder, &bar, packed);
  program.console.EndProgress();
  if (!made.ok()) return program.Fail(made.Text() + " Nothing was written.");
  if (const FileStatus placed = PutInPlace(program.files, packed); !placed.ok()) {
    return program.Fail("The grid could not be written to " + folder + ": " + placed.Text() + ".");
  }
  std::vector<std::string> paths;
  paths.reserve(packed.size());
  for (const PackedFile& file : packed) paths.push_back(file.path);
  return TellFiles(paths, options.json, program);
}

void DeclareGridInfoCommand(Command& command) {
  GridInfoOptions& options = command.Runs(RunGridInfo);
  command
      .Add("FILE", options.files,
           ".grd, .gsb, .las or .los, .gtx, .bin, .pgm or .isg; a name without a folder "
           "is also looked for in the data folder")
      .Required();
  command.AddFlag("--json", options.json, "Print JSON");
  command.Footer(
      "Each file is read and checked whole: one that is listed can be used.\n"
      "Example: tarvex grid info X2c.grd Y2c.grd");
}

void DeclareGridPackCommand(Command& command) {
  GridPackOptions& options = command.Runs(RunGridPack);
  command
      .Add("TEXT", options.text,
           "OSTN02_OSGM02_GB.txt (or that of 2015) of Great Britain, or gr3df97a.txt of "
           "France")
      .Required();
  command.Add("--folder", options.folder, "Where the files are put (default: the data folder)");
  command.AddFlag("--json", options.json, "Print JSON about the files made");
  command.Footer(
      "Great Britain: ostn02_x.bin and ostn02_y.bin. France: gr3df97a.bin. Files that exist are\n"
      "replaced, both parts or none.\n"
      "Example: tarvex grid pack OSTN02_OSGM02_GB.txt");
}

constexpr CommandRow kGridCommands[] = {
    {"info", "Say what grid and geoid files are and what they cover", DeclareGridInfoCommand},
    {"pack", "Make the files that conversions use from an agency's text", DeclareGridPackCommand},
};

}  // namespace

void DeclareGridCommand(Command& command) {
  command.Footer("Start with: tarvex grid info FILE");
  command.Commands(kGridCommands);
}

}  // namespace tarvex
