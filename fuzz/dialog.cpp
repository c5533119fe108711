// The dialog, its menus and small dialogs before a user who does anything at any moment. It runs in
// a thread of its own and waits there between two inputs, since opening it takes longer than all
// that an input does in it.
#include "DialogUser.h"

#include "DialogRun.h"
#include "LM_gallery.h"
#include "LM_session.h"
#include "MacMemory.h"
#include "ToolboxDesktop.h"

#include <QtGlobal>
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <semaphore>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int MOST_INPUTS = 50;    // in one dialog
constexpr int MOST_GROWTHS = 30;   // sessions that may leave something behind: what is kept for all
constexpr int64_t HASTE = 4000000; // nanoseconds that pass with each look at the clock

std::counting_semaphore<1> inputIsThere{0}, inputIsDone{0};
FuzzInput* input = nullptr;
DialogUser* user = nullptr;
LM_globals* shown = nullptr;
int inputsInDialog = 0;
std::filesystem::path styles;

void AwaitInput() {
  inputIsThere.acquire();
  user->Use(input);
}

// Called by the dialog's loop with what is left to it.
void ProcessEvent(const EventRecord* event) {
  if (event->what != keyDown || !user->IsDone())
    return;
  const LM_globals& globals = *shown;
  Check(globals.numLights >= 1 && globals.numLights <= LM_MAX_LIGHTS &&
            globals.curLight < globals.numLights,
        "there are lights, and one of them is chosen");
  if (++inputsInDialog >= MOST_INPUTS)
    return user->CloseFirst();
  inputIsDone.release();
  AwaitInput();
  shown->Default();
  LM_SetGlobalsToDialog(shown->dialog, shown);
  LM_SetCurLightToDialog(shown->dialog, shown);
}

class Session : public DialogRun {
public:
  Session() {
    styles = folder;
    std::filesystem::create_directories(StylePath(""));
    std::ofstream memory(folder / "limn" / "bundled-styles");
    for (const auto& name : LM_BundledStyleNames())
      memory << name << "\n";
    for (const char* name : {"Default", "one", "two"})
      WriteStyle(name, 90);
    record.processEvent = [](void* event) { ProcessEvent(static_cast<EventRecord*>(event)); };
  }

  void Run() {
    Call(LM_SEL_PARAMETERS);
    Check(Call(LM_SEL_PREPARE) == 0 && Call(LM_SEL_START) == 0, "the dialog can be built");
    while (Globals()->previewComplete == 0) {
      record.nextTile();
      Check(Call(LM_SEL_CONTINUE) == 0, "a preview can be collected");
    }
    shown = Globals();
    inputsInDialog = 0;
    user->Leave();
    const int16_t result = Call(LM_SEL_CONTINUE);
    Check(result == 0 || result == CV_RESULT_STOPPED, "the dialog ends in OK or Cancel");
    Check(slot == 0 || Globals()->dialog == nullptr, "the dialog is gone");
  }

private:
  void TestBody() override {}
  int16_t Call(int16_t selector) {
    int16_t result = 0;
    LM_AnswerHost(selector, &record, &slot, &result);
    return result;
  }
};

void UseDialogs() {
  static char name[] = "fuzz_dialog";
  static char* arguments[] = {name, nullptr};
  static int count = 1;
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  Check(TB_StartDesktop(count, arguments), "there is a desktop");
  TB_SetMemoryBudget(1 << 30); // asking the machine each time takes longer than all the rest
  DialogUser here;
  user = &here;
  AwaitInput();
  uint64_t most = 0;
  for (int growths = 0;;) {
    Session().Run();
    if (TB_BlocksInUse() > most)
      Check(++growths <= MOST_GROWTHS, "nothing is left behind");
    most = std::max(most, TB_BlocksInUse());
    if (!user->IsDone())
      continue;
    inputIsDone.release();
    AwaitInput();
  }
}

} // namespace

// A clock that runs ahead, so that a button's flash takes no time.
extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock,
                                                                    timespec* time) {
  static std::atomic<int64_t> ahead{0};
  const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
  if (result != 0 || clock != CLOCK_MONOTONIC)
    return result;
  const int64_t nanoseconds = time->tv_nsec + (ahead += HASTE);
  time->tv_sec += nanoseconds / 1000000000;
  time->tv_nsec = nanoseconds % 1000000000;
  return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzInput bytes(data, size);
  input = &bytes;
  static bool dialogsRun = false;
  if (!dialogsRun) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("LIMN_SCALE", "1", 1); // so that the window's places are the dialog's
    setenv("TMPDIR", "/dev/shm", 0);
    std::atexit([] { std::filesystem::remove_all(styles); });
    std::thread(UseDialogs).detach(); // waits for an input when the program ends
    dialogsRun = true;
  }
  inputIsThere.release();
  inputIsDone.acquire();
  input = nullptr;
  return 0;
}
