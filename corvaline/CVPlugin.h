// A filter plug-in: a loadable module whose one symbol is `main`.
#ifndef CV_PLUGIN_H
#define CV_PLUGIN_H

#include "CVFilterRecord.h"
#include "CVResult.h"

#include <string>

// A module once loaded stays so until the program ends: one that has opened windows cannot be taken
// out of a running program safely. Copies of a CVPlugin name the same module.
class CVPlugin {
public:
  CVPlugin() = default;
  // A plug-in linked into the program. fileName: for messages.
  CVPlugin(CVFilterEntry main, std::string fileName);

  // path: the module's file; a bare name means the current folder. Done, NoMemory, or BadPlugin
  // with a message that names the file; then the plug-in is as it was.
  CVResult load(const std::string& path);

  CVFilterEntry entry() const { return _entry; }    // null until a module is loaded
  const std::string& name() const { return _name; } // file name without its folder

private:
  CVFilterEntry _entry = nullptr;
  std::string _name;
};

#endif
