// The commands of the program, one file each. Adding one: a file here with its Add function, its
// line below, and its call in app/main.cpp.
#pragma once

#include "app/cli/program.h"

namespace CLI {
class App;
}  // namespace CLI

namespace tarvex {

void AddNewCommand(CLI::App& app, Program& program);
void AddStoreCommand(CLI::App& app, Program& program);
void AddImportCommand(CLI::App& app, Program& program);
void AddPointsCommand(CLI::App& app, Program& program);
void AddDeleteCommand(CLI::App& app, Program& program);
void AddCheckCommand(CLI::App& app, Program& program);
void AddRawCommand(CLI::App& app, Program& program);
void AddNoteCommand(CLI::App& app, Program& program);
void AddCollectCommand(CLI::App& app, Program& program);
void AddLocalizeCommand(CLI::App& app, Program& program);
void AddConvertCommand(CLI::App& app, Program& program);
void AddSystemsCommand(CLI::App& app, Program& program);
void AddGridCommand(CLI::App& app, Program& program);
void AddRoadCommand(CLI::App& app, Program& program);
void AddBasesCommand(CLI::App& app, Program& program);
void AddCasterCommand(CLI::App& app, Program& program);
void AddReplayCommand(CLI::App& app, Program& program);
void AddWatchCommand(CLI::App& app, Program& program);
void AddDemoCommand(CLI::App& app, Program& program);

}  // namespace tarvex
