#include "limn.h"

#include "LM_kernels.h"

#include <string_view>

// PROJECT_VERSION is the build's.
static_assert(std::string_view(LIMN_VERSION) == PROJECT_VERSION);

const char* limn_version() {
  return LIMN_VERSION;
}

const char* limn_target() {
  const LM_kernels* kernels = LM_BestKernels();
  return kernels == nullptr ? "plain" : kernels->name;
}
