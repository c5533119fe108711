// --relief and the options that go with it.
#pragma once

#include "style_source.h"

#include "LM_height_source.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace limn {

struct ReliefOptions {
  std::string source; // as the command line has it; empty: the style's
  int smoothing = LM_USUAL;
  int detail = LM_USUAL;
  bool fit = false;
  bool invert = false;
};

// What --relief is when it is not given, in words.
void AddReliefOptions(CLI::App& command, ReliefOptions& options, const std::string& otherwise);

// Where a style's heights come from, resolved: as the options say, or else the style itself.
// channels: files of further channels, which may be named as `limn channels` names them. Throws
// Failure(WrongUsage).
LM_height_source ReliefOf(const ReliefOptions& options, const NamedStyle& named,
                          const std::vector<std::string>& channels);

} // namespace limn
