// What a command takes, as a value: the manual pages and the shells' completion are made of it.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace tarvex {

/// An option, or an argument that is known by its place.
struct OptionDescription {
  std::vector<std::string> names;  ///< "--json", "-h"; of an argument its name alone: "JOB.crd"
  std::string value;               ///< what it takes: "NUMBER", "FILE"; empty when it takes nothing
  std::vector<std::string> words;  ///< all values that it takes, where they are a few words
  std::string help;
  std::string heading;  ///< under which the help has it
  bool required = false;
  bool repeated = false;  ///< it takes as many values as there are
};

struct CommandDescription {
  std::string words;  ///< as it is typed: "tarvex road stake"
  std::string summary;
  std::string footer;
  std::vector<OptionDescription> arguments;
  std::vector<OptionDescription> options;
  std::vector<CommandDescription> commands;  ///< of its own
};

/// Of a command that is declared, with those below it.
CommandDescription DescribeCommand(const CLI::App& app);

}  // namespace tarvex
