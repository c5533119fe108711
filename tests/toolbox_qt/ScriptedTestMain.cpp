#include "ToolboxDesktop.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

// The font library keeps what it has read; that is no leak of ours.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n";
}

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  testing::InitGoogleTest(&argc, argv);
  if (!TB_StartDesktop(argc, argv)) {
    std::fputs("no screen to test on\n", stderr);
    return 1;
  }
  return RUN_ALL_TESTS();
}
