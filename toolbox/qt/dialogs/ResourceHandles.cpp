#include "HostDialogs.h"

#include "ControlBlock.h"
#include "MacMemory.h"
#include "MacResources.h"
#include "ResourceHandles.h"

#include <cstring>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

namespace {

typedef std::pair<OSType, int16_t> ResourceName;

std::map<ResourceName, Handle>& Loaded() {
  static std::map<ResourceName, Handle> loaded;
  return loaded;
}

OSErr& LastError() {
  static OSErr error = noErr;
  return error;
}

// The JSON text of a resource; empty when there is none.
std::string TextOf(const ResourceName& name) {
  const OSType type = name.first;
  const char characters[] = {static_cast<char>(type >> 24), static_cast<char>(type >> 16),
                             static_cast<char>(type >> 8), static_cast<char>(type)};
  const nlohmann::json* resource =
      TB_Resource(std::string_view(characters, sizeof characters), name.second);
  if (resource == nullptr)
    return std::string();
  return resource->dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

OSErr Fill(Handle handle, const ResourceName& name) {
  const std::string text = TextOf(name);
  if (text.empty())
    return resNotFound;
  SetHandleSize(handle, static_cast<Size>(text.size()));
  if (MemError() != noErr || *handle == nullptr)
    return memFullErr;
  std::memcpy(*handle, text.data(), text.size());
  return noErr;
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
  const auto found = Loaded().find(name);
  if (found != Loaded().end()) {
    LoadResource(found->second);
    return LastError() == noErr ? found->second : nullptr;
  }
  if (TextOf(name).empty()) {
    LastError() = resNotFound;
    return nullptr;
  }
  Handle handle = NewHandle(0);
  LastError() = handle != nullptr ? Fill(handle, name) : OSErr{memFullErr};
  if (LastError() != noErr) {
    DisposeHandle(handle);
    return nullptr;
  }
  Loaded()[name] = handle;
  return handle;
}

void LoadResource(Handle resource) {
  LastError() = noErr;
  for (const auto& [name, handle] : Loaded()) {
    if (handle != resource)
      continue;
    if (*handle == nullptr)
      LastError() = Fill(handle, name);
    return;
  }
  if (!ReloadControlDefinition(resource))
    LastError() = resNotFound;
}

OSErr ResError() {
  return LastError();
}
