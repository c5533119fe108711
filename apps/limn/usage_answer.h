// What to answer to a command line that is wrong.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace limn {

// One sentence about the mistake, with what may have been meant.
std::string UsageAnswer(const CLI::App& app, const CLI::ParseError& error);

} // namespace limn
