// The command line: every command and option, from which parsing, --help, the manual pages and the
// completions of the shells are made.
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

// A command with arguments of its own, which parsing puts into its options.
template <class Options> struct AddedCommand {
  CLI::App& app;
  Options& options;
};

// Adds a command. When it is asked for, `command` becomes a run with the options.
template <class Options>
AddedCommand<Options> AddCommand(CLI::App& app, Command& command, const char* name,
                                 const char* text, ExitCode (*run)(const Options&)) {
  auto options = std::make_shared<Options>();
  CLI::App* const added = app.add_subcommand(name, text);
  added->callback([=, &command] { command = [=] { return run(*options); }; });
  return {*added, *options};
}

// The commands, each beside what it does.
void AddApply(CLI::App& app, Command& command);
void AddChannels(CLI::App& app, Command& command);
void AddEdit(CLI::App& app, Command& command, char** argv);
void AddHeights(CLI::App& app, Command& command);
void AddPreview(CLI::App& app, Command& command);
void AddSheet(CLI::App& app, Command& command);
void AddStyle(CLI::App& app, Command& command);
void AddStyles(CLI::App& app, Command& command);
void AddVerify(CLI::App& app, Command& command);

} // namespace limn
