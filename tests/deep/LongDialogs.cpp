// usage: long_dialogs OPENINGS
// The dialog opened again and again in one session, with edits of every kind, ended by OK and by
// Cancel in turn. Memory must not grow.
#include "DialogRun.h"

#include "Events.h"
#include "MemoryWatch.h"
#include "ToolboxDesktop.h"

#include <cstdio>
#include <cstdlib>

namespace {

int openings = 0;

TEST_F(DialogRun, MemoryDoesNotGrow) {
  MemoryWatch watch(openings);
  for (int i = 0; i < openings && !HasFailure(); ++i) {
    ToolboxScript script;
    script.Call([&] { UseLights(2); }).KeyPress(kTabKeyCode);
    DragBetween(script, BodyOf(1), {static_cast<int16_t>(60 + i % 90), 200});
    ClickItem(script, LM_LIGHT_ON_ITEM);
    ClickItem(script, LM_LIGHT_ON_ITEM); // a light that is out has no kind to choose
    ClickItem(script, LM_WHITE_IS_HIGH_ITEM);
    ClickItem(script, LM_LIGHT_COLOR_ITEM);
    ClickItem(script, i % 2 == 0 ? LM_LIGHT_TYPE_ITEM : LM_BUMP_CHANNEL_ITEM);
    script.AwaitMenu().ChooseFromMenu(1 + i / 2 % 2).Wait(20);
    script.KeyPress(i % 3 == 0 ? kReturnKeyCode : kEscapeKeyCode);
    const int16_t result = Run(script);
    ASSERT_EQ(result, i % 3 == 0 ? CV_RESULT_OK : CV_RESULT_STOPPED) << "opening " << i;
    watch.Round();
  }
  EXPECT_TRUE(answers.alerts.empty());
  EXPECT_TRUE(watch.Report("dialog openings"));
}

} // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  openings = argc > 1 ? std::atoi(argv[1]) : 0;
  if (!TB_StartDesktop(argc, argv)) {
    std::fputs("no screen to test on\n", stderr);
    return 1;
  }
  return RUN_ALL_TESTS();
}
