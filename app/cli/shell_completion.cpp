#include "app/cli/shell_completion.h"

#include <string_view>

namespace tarvex {
namespace {

// Finds the command in the words before the cursor and the number of its arguments so far, then
// asks the tables below for what comes next.
constexpr std::string_view kBashFunction = R"(
_tarvex_files() {
    compopt -o filenames 2>/dev/null
    local file
    while IFS= read -r file; do
        if [[ -z $1 || -d $file || $file == *.$1 ]]; then COMPREPLY+=("$file"); fi
    done < <(compgen -f -- "$cur")
}

_tarvex_take() {
    case $1 in
        '') ;;
        @file) _tarvex_files '' ;;
        @file.*) _tarvex_files "${1#@file.}" ;;
        *) COMPREPLY=($(compgen -W "$1" -- "$cur")) ;;
    esac
}

_tarvex() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}
    local command=tarvex count=0 i word takes commands options value argument
    COMPREPLY=()
    _tarvex_table
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [[ $word == -* ]]; then
            _tarvex_value "$command $word"
            if [[ -n $takes ]]; then ((i++)); fi
        elif [[ " $commands " == *" $word "* ]]; then
            command+=" $word"
            count=0
            _tarvex_table
        else
            ((count++))
        fi
    done
    _tarvex_value "$command $prev"
    if [[ $prev == -* && -n $takes ]]; then
        _tarvex_take "$value"
    elif [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    elif [[ -n $commands ]]; then
        COMPREPLY=($(compgen -W "$commands" -- "$cur"))
    else
        _tarvex_argument "$command $count"
        _tarvex_take "$argument"
    fi
}
)";

std::string LastWord(const std::string& words) {
  return words.substr(words.rfind(' ') + 1);
}

// What stands for a value in the tables: its words, "@file", "@file.crd", or nothing that could be
// completed.
std::string Completed(const std::string& name, const std::vector<std::string>& words) {
  std::string list;
  for (const std::string& word : words) list += (list.empty() ? "" : " ") + word;
  if (!list.empty()) return list;
  const std::size_t dot = name.rfind('.');
  const bool file = name.starts_with("FILE") || name.starts_with("LOG") || name == "FOLDER";
  if (dot != std::string::npos && name.find(' ') == std::string::npos) {
    return "@file" + name.substr(dot);
  }
  return file ? "@file" : "";
}

std::string CommandTable(const CommandDescription& command) {
  std::string commands;
  std::string options;
  for (const CommandDescription& own : command.commands) {
    commands += (commands.empty() ? "" : " ") + LastWord(own.words);
  }
  for (const OptionDescription& option : command.options) {
    options += (options.empty() ? "" : " ") + option.names.back();
  }
  std::string text =
      "        '" + command.words + "') commands='" + commands + "' options='" + options + "' ;;\n";
  for (const CommandDescription& own : command.commands) text += CommandTable(own);
  return text;
}

std::string ValueTable(const CommandDescription& command) {
  std::string text;
  for (const OptionDescription& option : command.options) {
    if (option.value.empty()) continue;
    std::string names;
    for (const std::string& name : option.names) {
      names += (names.empty() ? "'" : "|'") + command.words + " " + name + "'";
    }
    text +=
        "        " + names + ") takes=1 value='" + Completed(option.value, option.words) + "' ;;\n";
  }
  for (const CommandDescription& own : command.commands) text += ValueTable(own);
  return text;
}

std::string ArgumentTable(const CommandDescription& command) {
  std::string text;
  for (std::size_t i = 0; i < command.arguments.size(); ++i) {
    const OptionDescription& argument = command.arguments[i];
    const std::string completed = Completed(argument.names[0], argument.words);
    if (completed.empty()) continue;
    text += "        '" + command.words + " " + std::to_string(i) + "'" +
            (argument.repeated ? "|'" + command.words + "'*" : "") + ") argument='" + completed +
            "' ;;\n";
  }
  for (const CommandDescription& own : command.commands) text += ArgumentTable(own);
  return text;
}

std::string Function(const char* name, const char* reset, const char* of,
                     const std::string& table) {
  return std::string(name) + "() {\n    " + reset + "\n    case " + of + " in\n" + table +
         "    esac\n}\n\n";
}

std::string BashScript(const CommandDescription& program) {
  return Function("_tarvex_table", "commands='' options=''", "$command", CommandTable(program)) +
         Function("_tarvex_value", "takes='' value=''", "$1", ValueTable(program)) +
         Function("_tarvex_argument", "argument=''", "$1", ArgumentTable(program)) +
         std::string(kBashFunction.substr(1)) + "\ncomplete -F _tarvex tarvex\n";
}

std::string FishQuoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') quoted += '\\';
    quoted += c == '\n' ? ' ' : c;
  }
  return quoted + "'";
}

// The condition under which a line of fish holds: the words of this command were typed, and none of
// its own commands.
std::string FishCondition(const CommandDescription& command) {
  std::string text;
  std::string_view words = command.words;
  for (std::size_t blank = words.find(' '); blank != std::string_view::npos;
       blank = words.find(' ')) {
    words.remove_prefix(blank + 1);
    text += (text.empty() ? "" : "; and ") + std::string("__fish_seen_subcommand_from ") +
            std::string(words.substr(0, words.find(' ')));
  }
  std::string own;
  for (const CommandDescription& below : command.commands) own += " " + LastWord(below.words);
  if (!own.empty()) {
    text += (text.empty() ? "" : "; and ") + std::string("not __fish_seen_subcommand_from") + own;
  }
  return "complete -c tarvex -n " + FishQuoted(text);
}

std::string FishLines(const CommandDescription& command) {
  const std::string condition = FishCondition(command);
  std::string text;
  for (const CommandDescription& own : command.commands) {
    text += condition + " -f -a " + LastWord(own.words) + " -d " + FishQuoted(own.summary) + "\n";
  }
  for (const OptionDescription& option : command.options) {
    text += condition;
    for (const std::string& name : option.names) {
      text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (!option.value.empty()) {
      const std::string completed = Completed(option.value, option.words);
      const bool file = completed.starts_with('@');
      text += file || completed.empty() ? " -r" : " -x -a " + FishQuoted(completed);
    }
    text += " -d " + FishQuoted(option.help) + "\n";
  }
  for (const CommandDescription& own : command.commands) text += FishLines(own);
  return text;
}

}  // namespace

std::string BashCompletion(const CommandDescription& program) {
  return "# Completion of tarvex for bash; made by `tarvex completion bash`.\n\n" +
         BashScript(program);
}

std::string ZshCompletion(const CommandDescription& program) {
  return "#compdef tarvex\n# Completion of tarvex for zsh, by way of its bash completion; made by "
         "`tarvex completion zsh`.\n\nautoload -U +X bashcompinit && bashcompinit\n\n" +
         BashScript(program);
}

std::string FishCompletion(const CommandDescription& program) {
  return "# Completion of tarvex for fish; made by `tarvex completion fish`.\n\n" +
         FishLines(program);
}

}  // namespace tarvex
