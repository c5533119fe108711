// The module's one symbol for hosts.
#include <dlfcn.h>
#include <string>
#include <string_view>

#include "LM_session.h"

// A C++ function of these arguments cannot be called `main`, so only its symbol is.
extern "C" __attribute__((visibility("default"))) int
LM_main(int selector, void* record, intptr_t* data, int16_t* result) __asm__("main");

namespace {

// Loads the dialog beside this module. With it come the desktop's libraries, which take longer to
// load than lighting a small picture takes: only an interactive run loads it. Without one, and
// with one that belongs to another copy of the plug-in, there are no dialog services afterwards.
bool LoadDialog() noexcept {
  try {
    Dl_info self = {};
    if (dladdr(reinterpret_cast<void*>(&LM_main), &self) == 0 || self.dli_fname == nullptr)
      return false;
    const std::string_view path = self.dli_fname;
    const size_t slash = path.rfind('/');
    const std::string folder(slash == std::string_view::npos ? "." : path.substr(0, slash));
    void* module = dlopen((folder + "/dialog.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    void* use = module == nullptr ? nullptr : dlsym(module, "LM_UseDesktopDialog");
    if (use != nullptr)
      reinterpret_cast<void (*)()>(use)();
    return use != nullptr;
  } catch (...) {
    return false;
  }
}

} // namespace

extern "C" int LM_main(int selector, void* record, intptr_t* data, int16_t* result) {
  if (static_cast<int16_t>(selector) == LM_SEL_PARAMETERS) {
    [[maybe_unused]] static const bool loaded = LoadDialog();
  }
  return LM_AnswerHost(selector, record, data, result);
}
