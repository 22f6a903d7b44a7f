#include "app/cli/commands/commands.h"

namespace tarvex {

// Each is in the file of its name: new_command.cpp, collect_command.cpp and so on.
void DeclareNewCommand(Command& command);
void DeclareSettingsCommand(Command& command);
void DeclareProfileCommand(Command& command);
void DeclareCollectCommand(Command& command);
void DeclareStakeCommand(Command& command);
void DeclareCheckinCommand(Command& command);
void DeclareRecomputeCommand(Command& command);
void DeclareWatchCommand(Command& command);
void DeclareBasesCommand(Command& command);
void DeclareStoreCommand(Command& command);
void DeclareImportCommand(Command& command);
void DeclarePointsCommand(Command& command);
void DeclareDeleteCommand(Command& command);
void DeclareCheckCommand(Command& command);
void DeclareRawCommand(Command& command);
void DeclareNoteCommand(Command& command);
void DeclareLocalizeCommand(Command& command);
void DeclareConvertCommand(Command& command);
void DeclareSystemsCommand(Command& command);
void DeclareGridCommand(Command& command);
void DeclareRoadCommand(Command& command);
void DeclareReplayCommand(Command& command);
void DeclareCasterCommand(Command& command);
void DeclareDemoCommand(Command& command);
void DeclareCompletionCommand(Command& command);
void DeclareManualCommand(Command& command);

namespace {

constexpr CommandRow kCommands[] = {
    {"new", "Create a job: its coordinate file, settings and raw file", DeclareNewCommand},
    {"settings", "Show or change the settings of a job", DeclareSettingsCommand},
    {"profile", "Keep receiver, antenna, caster and limits under a name", DeclareProfileCommand},
    {"collect", "Store points from a receiver", DeclareCollectCommand},
    {"stake", "Set out points, lines and arcs with a receiver; report what was staked",
     DeclareStakeCommand},
    {"checkin", "Measure a known point and tell the difference", DeclareCheckinCommand},
    {"watch", "Look at a receiver, live", DeclareWatchCommand},
    {"bases", "List the correction streams of a caster", DeclareBasesCommand},
    {"store", "Store a point from entered coordinates", DeclareStoreCommand},
    {"import", "Store the points of a text file", DeclareImportCommand},
    {"points", "List the points of a job", DeclarePointsCommand},
    {"delete", "Delete points of a job", DeclareDeleteCommand},
    {"check", "Hold the files of a job against each other", DeclareCheckCommand},
    {"raw", "Print the raw data file of a job", DeclareRawCommand},
    {"note", "Show a point's notes and GNSS quality, or add a note", DeclareNoteCommand},
    {"localize", "Tie a job to local control points and report the fit", DeclareLocalizeCommand},
    {"recompute", "Compute measured points anew after a change of the localization or system",
     DeclareRecomputeCommand},
    {"convert",
     "Convert lines \"latitude longitude [height]\" to \"northing easting [elevation]\", or back",
     DeclareConvertCommand},
    {"systems", "List coordinate systems, edit your own", DeclareSystemsCommand},
    {"grid", "Shift grids and geoid models: what a file is, make the files", DeclareGridCommand},
    {"road", "Roads: check, list, compute, stake, write, exchange", DeclareRoadCommand},
    {"replay", "Send a recorded log as a receiver would", DeclareReplayCommand},
    {"caster", "Serve recorded corrections on this machine, for trials", DeclareCasterCommand},
    {"demo", "Run a demonstration session on the simulated receiver", DeclareDemoCommand},
    {"completion", "Print a script that completes commands in a shell", DeclareCompletionCommand,
     true},
    {"manual", "Write the manual pages into a folder", DeclareManualCommand, true},
};

}  // namespace

std::span<const CommandRow> ProgramCommands() {
  return kCommands;
}

}  // namespace tarvex
