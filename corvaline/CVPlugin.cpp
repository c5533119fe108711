#include "CVPlugin.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <sys/stat.h>
#include <utility>

CVPlugin::CVPlugin(CVFilterEntry entry, std::string fileName)
    : _entry(entry), _name(std::move(fileName)) {}

bool CVPlugin::call(int selector, void* record, intptr_t* dataSlot, int16_t* code) const noexcept {
  try {
    _entry(selector, record, dataSlot, code);
    return true;
  } catch (...) {
    return false;
  }
}

static CVResult badPlugin(std::string message) {
  return {CVOutcome::BadPlugin, 0, std::move(message)};
}

static CVResult loadEntry(const std::string& path, CVFilterEntry& entry) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0)
    return badPlugin(path + ": cannot be loaded: " + std::strerror(errno));
  if (!S_ISREG(status.st_mode))
    return badPlugin(path + ": cannot be loaded: it is not a file");

  // A name without a folder would be looked for among the system's libraries.
  const bool bare = path.find('/') == std::string::npos;
  void* module = dlopen((bare ? "./" + path : path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    const char* reason = dlerror();
    return badPlugin(path + ": cannot be loaded as a module: " +
                     (reason != nullptr ? reason : "no reason known"));
  }
  void* symbol = dlsym(module, "main");
  if (symbol == nullptr) {
    dlclose(module);
    return badPlugin(path + ": is not a filter plug-in: it has no entry point \"main\"");
  }
  static_assert(sizeof entry == sizeof symbol);
  std::memcpy(&entry, &symbol, sizeof entry);
  return {};
}

CVResult CVPlugin::load(const std::string& path) {
  return CVGuarded("loading a plug-in", [&]() -> CVResult {
    CVFilterEntry loaded = nullptr;
    std::string name = path.substr(path.rfind('/') + 1);
    if (CVResult result = loadEntry(path, loaded); !result.ok())
      return result;
    _entry = loaded;
    _name = std::move(name);
    return {};
  });
}
