// The module's one exported symbol.
#include <dlfcn.h>
#include <string>
#include <string_view>

#include "CVFilterRecord.h"
#include "LM_entry.h"

// A C++ function of these arguments cannot be called `main`, so only its symbol is.
extern "C" __attribute__((visibility("default"))) int
LM_main(int selector, void* record, intptr_t* data, int16_t* result) __asm__("main");

namespace {

// The part of the plug-in that has the dialog, and with it the desktop's libraries, which take
// longer to load than lighting a small picture takes: only an interactive run loads it.
constexpr const char* DIALOG_MODULES[] = {"/dialog.so", "/limn/dialog.so"}; // installed, built
constexpr const char* DIALOG_ENTRY = "LM_dialog_main";

// The entry of the module with the dialog, in or below this one's folder; null when there is none.
CVFilterEntry LoadDialogModule() noexcept {
  try {
    Dl_info self = {};
    if (dladdr(reinterpret_cast<void*>(&LM_main), &self) == 0 || self.dli_fname == nullptr)
      return nullptr;
    const std::string_view path = self.dli_fname;
    const size_t slash = path.rfind('/');
    const std::string folder(slash == std::string_view::npos ? "." : path.substr(0, slash));
    for (const char* name : DIALOG_MODULES)
      if (void* module = dlopen((folder + name).c_str(), RTLD_NOW | RTLD_LOCAL); module != nullptr)
        return reinterpret_cast<CVFilterEntry>(dlsym(module, DIALOG_ENTRY));
    return nullptr;
  } catch (...) {
    return nullptr;
  }
}

// Once a run is interactive its calls, and all later ones, go to the module with the dialog. It is
// built from the same sources and works on the same settings object, which the data slot holds.
CVFilterEntry entry = LM_AnswerHost;

} // namespace

extern "C" int LM_main(int selector, void* record, intptr_t* data, int16_t* result) {
  if (static_cast<int16_t>(static_cast<uint16_t>(selector)) == LM_SEL_PARAMETERS) {
    static const CVFilterEntry withDialog = LoadDialogModule();
    if (withDialog != nullptr)
      entry = withDialog;
  }
  return entry(selector, record, data, result);
}
