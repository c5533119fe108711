// A filter plug-in: a loadable module whose one symbol is `main`.
#pragma once

#include "CVFilterRecord.h"
#include "CVResult.h"

#include <cstdint>
#include <string>

// A module once loaded stays so until the program ends: one that has opened windows cannot be taken
// out of a running program safely. Copies of a CVPlugin name the same module.
class CVPlugin {
public:
  CVPlugin() = default;
  // A plug-in linked into the program. fileName: for messages.
  CVPlugin(CVFilterEntry entry, std::string fileName);

  // path: the module's file; a bare name means the current folder. Done, NoMemory, or BadPlugin
  // with a message that names the file; then the plug-in is as it was.
  CVResult load(const std::string& path);

  bool isLoaded() const { return _entry != nullptr; }
  // One call of the loaded plug-in; arguments as CVFilterEntry has them. False when an exception
  // came out of it, which the contract forbids.
  bool call(int selector, void* record, intptr_t* dataSlot, int16_t* code) const noexcept;
  const std::string& name() const { return _name; } // file name without its folder

private:
  CVFilterEntry _entry = nullptr;
  std::string _name;
};
