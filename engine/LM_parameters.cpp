#include "LM_parameters.h"

#include "MacMemory.h"

CVHandle LM_NewParameters() {
  CVHandle handle = NewHandle(static_cast<Size>(sizeof(foo)));
  if (handle != nullptr)
    LM_InitParameters(reinterpret_cast<foo*>(*handle));
  return handle;
}

foo* LM_Parameters(const FilterRecord* record) {
  CVHandle handle = record->savedParams;
  if (handle == nullptr || *handle == nullptr ||
      GetHandleSize(handle) < static_cast<Size>(sizeof(foo)))
    return nullptr;
  foo* params = reinterpret_cast<foo*>(*handle);
  return params->magic == LM_PARAMS_MAGIC ? params : nullptr;
}
