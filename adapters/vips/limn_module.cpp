// What libvips loads from its folder of modules when it starts.
#include "limn_operation.h"

#include <gmodule.h>

extern "C" G_MODULE_EXPORT const gchar* g_module_check_init(GModule* module) {
  // Types cannot be taken back, so the code must stay.
  g_module_make_resident(module);
  limn::RegisterOperation();
  return nullptr;
}
