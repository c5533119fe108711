// Words of the command line that the parser would take for something else.
#pragma once

namespace CLI {
class App;
}

namespace limn {

// Parses like app.parse(argc, argv), but "[a,b]", which as one of several names would be split at
// its commas, stays the name that it is, and an empty value, such as that of a shell's variable
// that is not set, is a mistake and not the option left out. All options must have been added.
// Throws CLI::ParseError.
void ParseWhole(CLI::App& app, int argc, char** argv);

} // namespace limn
