// The command line: every command and option in one place, from which parsing, --help, the manual
// pages and the completions of the shells are made.
#pragma once

#include "failure.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>

namespace limn {

// What the command line asked for; runs after parsing.
using Command = std::function<ExitCode()>;

extern const char* const EXIT_CODES;

// Parsing sets `command`, which must outlive the result, as must argv.
std::unique_ptr<CLI::App> MakeCommandLine(Command& command, char** argv);

// The parts of that.
void AddApply(CLI::App& app, Command& command);
void AddSheet(CLI::App& app, Command& command);
void AddStyles(CLI::App& app, Command& command);
void AddStyle(CLI::App& app, Command& command);

} // namespace limn
