// The dialog on a host whose services fail at every call in turn.
#include "DialogRun.h"

#include "Events.h"
#include "MacMemory.h"

#include <cstdio>

namespace {

constexpr int16_t TROUBLE = -4321;
constexpr int16_t PICKED = 257; // times the first component that the host answers

struct Case {
  HostService service;
  const char* name;
  int16_t result; // of the run
};
const Case CASES[] = {{HostService::NextTile, "nextTile", TROUBLE},
                      {HostService::QueryProperty, "queryProperty", TROUBLE},
                      {HostService::ShowPixels, "showPixels", 0}, // the next drawing shows it
                      {HostService::PickColor, "colorPicker", 0}};

class DialogFault : public DialogRun {
protected:
  // Picks two colours, chooses relief, accepts.
  int16_t UseDialog() {
    ToolboxScript script;
    ClickItem(script, LM_AMBIENT_COLOR_ITEM);
    ClickItem(script, LM_LIGHT_COLOR_ITEM);
    ClickItem(script, LM_BUMP_CHANNEL_ITEM);
    script.Wait(60).ChooseFromMenu(4).Wait(30).KeyPress(kReturnKeyCode);
    return Run(script, Script::MayBeCut);
  }
  std::vector<char> Kept() const {
    return record.savedParams == nullptr
               ? std::vector<char>()
               : std::vector<char>(*record.savedParams,
                                   *record.savedParams + GetHandleSize(record.savedParams));
  }
  void Forget() {
    if (Globals() != nullptr)
      LM_DestroyGlobals(Globals());
    slot = 0;
    DisposeHandle(record.savedParams);
    record.savedParams = nullptr;
  }

  // Each call of each service failing, `begin` called before each run.
  void TryEachCall(const char* runs, const std::function<void()>& begin) {
    begin();
    ASSERT_EQ(UseDialog(), 0); // from here on the toolbox has what it keeps
    for (const Case& test : CASES) {
      int failed = 0;
      for (bool hasFailed = true; hasFailed;) {
        begin();
        const std::vector<char> kept = Kept();
        const uint64_t blocks = TB_BlocksInUse();
        int calls = 0;
        hasFailed = false;
        answers.trouble = [&](HostService service) {
          const bool fails = service == test.service && ++calls == failed + 1;
          hasFailed |= fails;
          return fails ? TROUBLE : int16_t{0};
        };
        const int16_t result = UseDialog();
        const bool isAccepted = slot != 0 && Globals()->BumpChannel() == 4;
        answers.trouble = [](HostService) { return int16_t{0}; };
        // After the dialog, a channel of which nothing can be known is taken to be there.
        EXPECT_TRUE(result == (hasFailed ? test.result : 0) ||
                    (test.service == HostService::QueryProperty && isAccepted && result == 0))
            << test.name << ", call " << failed + 1;
        EXPECT_EQ(FrontWindow(), nullptr);
        if (result != 0) {
          EXPECT_EQ(Kept(), kept) << "the settings are not as before";
          EXPECT_LE(TB_BlocksInUse(), blocks) << test.name << ", call " << failed + 1;
        } else if (hasFailed && test.service == HostService::PickColor) {
          EXPECT_NE(failed == 0 ? Globals()->ambientColor.component[0]
                                : Globals()->lights[0].color.component[0],
                    PICKED);
        }
        failed += hasFailed ? 1 : 0;
      }
      EXPECT_GT(failed, 0) << test.name;
      std::printf("counted: %s calls failed in %s %d\n", test.name, runs, failed);
    }
  }
};

TEST_F(DialogFault, InAFirstRun) {
  TryEachCall("first dialogs", [&] { Forget(); });
}

TEST_F(DialogFault, InALaterRun) {
  TryEachCall("later dialogs", [&] {
    Forget();
    ToolboxScript accept;
    accept.KeyPress(kReturnKeyCode);
    ASSERT_EQ(Run(accept), 0);
  });
}

} // namespace
