#include "app/cli/command_description.h"

#include <CLI/CLI.hpp>

#include "core/text/text.h"

namespace tarvex {
namespace {

// The words of "a|b|c"; none of what is no such list.
std::vector<std::string> WordsOf(std::string_view value) {
  std::vector<std::string> words;
  if (value.find('|') == std::string_view::npos) return words;
  for (std::size_t end = 0; end != std::string_view::npos;) {
    end = value.find('|');
    words.emplace_back(value.substr(0, end));
    if (end != std::string_view::npos) value.remove_prefix(end + 1);
  }
  return words;
}

OptionDescription DescribeOption(const CLI::Option& option) {
  OptionDescription description;
  for (const std::string& name : option.get_snames()) description.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) description.names.push_back("--" + name);
  if (description.names.empty()) description.names.push_back(option.get_name(true, false));
  if (option.get_type_size() != 0) description.value = option.get_type_name();
  description.words = WordsOf(description.value);
  description.help = option.get_description();
  description.heading = option.get_group();
  description.required = option.get_required();
  description.repeated = option.get_items_expected_max() >= CLI::detail::expected_max_vector_size;
  return description;
}

CommandDescription Describe(const CLI::App& app, const std::string& before) {
  CommandDescription description{.words = before + app.get_name(),
                                 .summary = app.get_description(),
                                 .footer = app.get_footer(),
                                 .arguments = {},
                                 .options = {},
                                 .commands = {}};
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group().empty()) continue;
    auto& list = option->nonpositional() ? description.options : description.arguments;
    list.push_back(DescribeOption(*option));
  }
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (command->get_group().empty()) continue;
    description.commands.push_back(Describe(*command, description.words + " "));
  }
  return description;
}

}  // namespace

CommandDescription DescribeCommand(const CLI::App& app) {
  return Describe(app, "");
}

}  // namespace tarvex
