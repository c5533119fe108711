// The module's one exported symbol.
#include <dlfcn.h>
#include <string>

#include "CVFilterRecord.h"
#include "LM_entry.h"

// A C++ function of these arguments cannot be called `main`, so only its symbol is.
extern "C" __attribute__((visibility("default"))) int
LM_main(int selector, void* record, intptr_t* data, int16_t* result) __asm__("main");

namespace {

// The part of the plug-in that has the dialog, and with it the desktop's libraries, which take
// longer to load than lighting a small picture takes: only an interactive run loads it.
constexpr const char* DIALOG_MODULE = "/limn/dialog.so";
constexpr const char* DIALOG_ENTRY = "LM_dialog_main";

// The entry of the module with the dialog, below this one's folder; null when there is none.
CVFilterEntry LoadDialogModule() noexcept {
  try {
    Dl_info self = {};
    if (dladdr(reinterpret_cast<void*>(&LM_main), &self) == 0 || self.dli_fname == nullptr)
      return nullptr;
    std::string path = self.dli_fname;
    path.erase(path.rfind('/') == std::string::npos ? 0 : path.rfind('/'));
    path = (path.empty() ? "." : path) + DIALOG_MODULE;
    void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    return module != nullptr ? reinterpret_cast<CVFilterEntry>(dlsym(module, DIALOG_ENTRY))
                             : nullptr;
  } catch (...) {
    return nullptr;
  }
}

// Once a run is interactive its calls, and all later ones, go to the module with the dialog. It is
// built from the same sources and works on the same settings object, which the data slot holds.
CVFilterEntry entry = LM_AnswerHost;

} // namespace

extern "C" int LM_main(int selector, void* record, intptr_t* data, int16_t* result) {
  if (static_cast<int16_t>(static_cast<uint16_t>(selector)) == CV_SEL_PARAMETERS) {
    static const CVFilterEntry withDialog = LoadDialogModule();
    if (withDialog != nullptr)
      entry = withDialog;
  }
  return entry(selector, record, data, result);
}
