// What limn edit is asked. Two programs read the same command line: limn, which knows mistakes and
// help without loading the desktop's libraries, and limn-edit, which does the work.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace limn {

struct EditOptions {
  std::string image;
  std::string output; // empty: beside the image
  std::string area;   // "X,Y,W,H", or empty
  std::string mask;
  std::vector<std::string> channels;
  std::string style; // to begin with; empty: the default one
  bool printCommand = false;
  uint64_t maxPixels = 0; // as for limn apply
  bool force = false;
  bool quiet = false;
};

// Adds the arguments to a command. The options are filled by parsing.
std::shared_ptr<EditOptions> AddEditOptions(CLI::App& command);

} // namespace limn
