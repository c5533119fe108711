// --relief and the options that go with it.
#pragma once

#include "image_file.h"
#include "style_source.h"

#include "LM_height_source.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace limn {

struct ReliefOptions {
  std::string source;   // as the command line has it; empty: the style's
  std::string normals;  // a normal map, instead of that; or empty
  std::string normalsY; // "up", "down" or empty
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

// Reads the file that the source, of kind File, names: a grey image, or the normal map that the
// options name, of which the notices tell. Throws Failure.
GreyImage ReadHeights(const ReliefOptions& options, const LM_height_source& source,
                      std::vector<std::string>& notices);

} // namespace limn
