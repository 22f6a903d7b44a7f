// How a command is put together: its options live in a struct of its own, and a plain function runs
// it.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "app/cli/program.h"

namespace tarvex {

/// Adds a sub-command whose options are an `Options` and whose work is `run(options, program)`.
template <typename Options>
struct Command {
  Command(CLI::App& app, Program& program, const std::string& name, const std::string& summary,
          ExitCode (*run)(const Options&, Program&))
      : options(std::make_shared<Options>()), sub(*app.add_subcommand(name, summary)) {
    sub.callback([kept = options, &program, run] { program.exitCode = run(*kept, program); });
  }

  std::shared_ptr<Options> options;
  CLI::App& sub;
};

}  // namespace tarvex
