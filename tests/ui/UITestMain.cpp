#include "ToolboxDesktop.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  testing::InitGoogleTest(&argc, argv);
  if (!TB_StartDesktop(argc, argv)) {
    std::fputs("no screen to test on\n", stderr);
    return 1;
  }
  return RUN_ALL_TESTS();
}
