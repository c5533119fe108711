// The editor's command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace editor {

struct EditorOptions {
  std::vector<std::string> images; // a window each
  std::string style;               // a style file, its JSON form, or a style's name
  bool dialog = false;             // open the lighting dialog at once
};

// Reads the command line. Answers the exit code of one that opens no window: it has then been
// answered on the terminal.
std::optional<int> ReadEditorOptions(int argc, char** argv, EditorOptions& options);

} // namespace editor
