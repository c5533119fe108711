// A command line told as data, for the programs that make manual pages and completions of it.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace limn {

// Adds the hidden option --describe-options, which prints as one JSON object all that --help shows
// of the application and its commands:
//   {"name", "version", "settings": [text…], and of this and every command:
//    "text", "footer", "options": [{"names": [text…], "value", "text", "required", "repeated"}…],
//    "arguments": [{"name", "text", "required", "repeated"}…], "commands": [{"name", …}…]}
// "value" is empty for a flag. settings: the keys that an option whose value is KEY=VALUE takes.
void AddDescription(CLI::App& app, const std::string& version,
                    const std::vector<std::string>& settings);

} // namespace limn
