#include "HostDialogs.h"

#include "MacMemory.h"
#include "MacResources.h"
#include "ResourceHandles.h"

#include <map>
#include <string_view>
#include <utility>

namespace {

typedef std::pair<OSType, int16_t> ResourceName;

std::map<ResourceName, Handle>& Loaded() {
  static auto& loaded = *new std::map<ResourceName, Handle>; // handles stay until the process ends
  return loaded;
}

OSErr& LastError() {
  static OSErr error = noErr;
  return error;
}

bool IsThere(const ResourceName& name) {
  const OSType type = name.first;
  const char characters[] = {static_cast<char>(type >> 24), static_cast<char>(type >> 16),
                             static_cast<char>(type >> 8), static_cast<char>(type)};
  return TB_Resource(std::string_view(characters, sizeof characters), name.second) != nullptr;
}

} // namespace

int16_t ResourceNumber(Handle resource, OSType type) {
  for (const auto& [name, handle] : Loaded()) {
    if (handle == resource && name.first == type)
      return name.second;
  }
  return INT16_MIN;
}

Handle GetResource(OSType type, int16_t number) {
  const ResourceName name = {type, number};
  LastError() = noErr;
  if (const auto found = Loaded().find(name); found != Loaded().end())
    return found->second;
  const bool isThere = IsThere(name);
  Handle handle = isThere ? NewHandle(0) : nullptr;
  if (handle != nullptr)
    Loaded()[name] = handle;
  else
    LastError() = isThere ? memFullErr : resNotFound;
  return handle;
}

void LoadResource(Handle resource) {
  LastError() = resource != nullptr && *resource != nullptr ? noErr : resNotFound;
}

OSErr ResError() {
  return LastError();
}
