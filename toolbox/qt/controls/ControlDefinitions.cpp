#include "ControlBlock.h"
#include "MacMemory.h"
#include "MacStrings.h"

#include <cstring>
#include <map>
#include <string>

namespace {

struct Definition {
  std::string name;
  ControlDefProcPtr procedure;
};

std::map<short, Definition>& Definitions() {
  static std::map<short, Definition> definitions = {
      {STANDARD_BUTTON_DEFINITION, {"", StandardButtonDefinition}},
      {POPUP_DEFINITION, {"", PopupDefinition}}};
  return definitions;
}

} // namespace

OSErr RegisterControlDefinition(short number, ConstStr255Param name, ControlDefProcPtr procedure) {
  if (procedure == nullptr)
    return paramErr;
  Definitions()[number] = {name != nullptr ? TB_StdString(name) : std::string(), procedure};
  return noErr;
}

ControlDefProcPtr FindControlDefinition(short number) {
  const auto found = Definitions().find(number);
  return found != Definitions().end() ? found->second.procedure : nullptr;
}

short ControlDefinitionNumber(std::string_view name) {
  for (const auto& [number, definition] : Definitions()) {
    if (!definition.name.empty() && definition.name == name)
      return number;
  }
  return -1;
}

Handle NewControlDefinition(ControlDefProcPtr procedure) {
  Handle definition = NewHandle(sizeof procedure);
  if (definition != nullptr)
    std::memcpy(*definition, &procedure, sizeof procedure);
  return definition;
}

int32_t CallControlDefinition(Handle definition, short varCode, ControlHandle control,
                              short message, intptr_t param) {
  if (definition == nullptr || *definition == nullptr)
    return 0;
  ControlDefProcPtr procedure = nullptr;
  std::memcpy(&procedure, *definition, sizeof procedure);
  return procedure != nullptr ? procedure(varCode, control, message, param) : 0;
}
