// A run of the filter, with a dialog and without, in which memory or a service of the host fails at
// every step.
#include "FaultRun.h"
#include "LM_host_services.h"
#include "LM_preview.h"
#include "LimnResources.h"
#include "MacMemory.h"
#include "MacResources.h"
#include "MacStrings.h"
#include "ScriptedDialog.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace {

// The picture is larger than two tiles, and larger than the preview.
constexpr int16_t WIDTH = 300;
constexpr int16_t HEIGHT = 140;

CVFilterEntry module = nullptr;
int Module(int selector, void* record, intptr_t* data, int16_t* result) {
  const Exposed exposed;
  return module(selector, record, data, result);
}
int Session(int selector, void* record, intptr_t* data, int16_t* result) {
  const Exposed exposed;
  return SessionEntry(selector, record, data, result);
}

// --- The host's services, one call of which fails ---

enum Service { NEXT_TILE, QUERY_PROPERTY, SHOW_PIXELS, PICK_COLOR, TEST_CANCEL, SERVICES };
const char* const SERVICE_NAMES[] = {"nextTile", "queryProperty", "showPixels", "colorPicker",
                                     "testCancel"};
constexpr int16_t TROUBLE = -4321;
constexpr int ROWS =
    89; // between two rows at which the user cancels; shares no factor with a tile's

struct {
  Service service;
  int failAt; // the call of it that fails, from 1; 0 for none
  int calls;
  bool hasFailed;
} services;

bool Fails(Service service) {
  const bool fails = service == services.service && ++services.calls == services.failAt;
  services.hasFailed |= fails;
  return fails;
}

FilterRecord original; // the scripted host's own services

int16_t NextTile() {
  const Sheltered sheltered;
  const int16_t result = original.nextTile();
  return Fails(NEXT_TILE) ? TROUBLE : result;
}
int16_t QueryProperty(uint32_t signature, uint32_t key, int32_t index, int32_t* value,
                      CVHandle* handle) {
  const Sheltered sheltered;
  return Fails(QUERY_PROPERTY) ? TROUBLE
                               : original.queryProperty(signature, key, index, value, handle);
}
int16_t ShowPixels(const CVPixelMap*, const CVRect32*, int32_t, int32_t, void*) {
  return Fails(SHOW_PIXELS) ? TROUBLE : int16_t{CV_RESULT_OK};
}
int16_t PickColor(CVColorRequest*) {
  return Fails(PICK_COLOR) ? TROUBLE : int16_t{CV_RESULT_OK};
}
uint8_t TestCancel() {
  return Fails(TEST_CANCEL) ? 1 : 0;
}

struct InterferingHost : ScriptedHost {
  explicit InterferingHost(CVFilterEntry filter) : ScriptedHost(WIDTH, HEIGHT, filter) {
    original = record;
    record.nextTile = NextTile;
    record.queryProperty = QueryProperty;
    record.showPixels = ShowPixels;
    record.colorPicker = PickColor;
    record.testCancel = TestCancel;
  }
  std::vector<char> Kept() const {
    return record.savedParams == nullptr
               ? std::vector<char>()
               : std::vector<char>(*record.savedParams,
                                   *record.savedParams + GetHandleSize(record.savedParams));
  }
};

// What the user of the scripted dialog does: takes relief or none, looks at the preview, accepts.
int16_t UseDialog(LM_globals* g, bool relief) {
  int16_t channels = 0;
  int16_t result = LM_GetNumChannels(channels, g->record);
  if (result != CV_RESULT_OK)
    return result;
  g->exposure = 90;
  g->gloss = 77;
  g->SetBumpChannel(relief ? 4 : 0);
  if (relief)
    result = LM_GetPreviewBumpPixelMap(g);
  return result != CV_RESULT_OK ? result : LM_ShadePreview(g);
}

enum class History { First, Later };

class SessionFault : public FaultTest {
protected:
  void SetUp() override {
    TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
    services = {};
    TB_SetMemoryBudget(uint64_t{1} << 28); // without one, how often the system is asked is chance
    module = ScriptedHost(1, 1).entry;
  }

  // A run without a dialog. Answers its result; where that is 0 the picture is whole.
  static int16_t Repeat(bool relief) {
    InterferingHost host(Module);
    host.KeepParameters(OneLight(relief));
    const std::vector<char> kept = host.Kept();
    const int16_t result = host.Run();
    EXPECT_EQ(host.Kept(), kept);
    const std::vector<uint8_t> first = host.out;
    services.failAt = 0;
    const uint32_t kind = std::exchange(fault_plan->kind, FAULT_NONE);
    // The next run does as if nothing had happened.
    EXPECT_EQ(host.Run(), CV_RESULT_OK);
    EXPECT_TRUE(result != CV_RESULT_OK || host.out == first);
    fault_plan->kind = kind;
    return result;
  }

  // An interactive run; with Later, after one whose settings are to survive a failure.
  int16_t Interact(bool relief, History history) {
    InterferingHost host(Session);
    std::vector<uint8_t> before;
    bool isAccepted = false;
    const auto act = [&](LM_globals* g) {
      const int16_t result = UseDialog(g, relief);
      isAccepted = result == CV_RESULT_OK;
      return result;
    };
    if (history == History::Later) {
      const uint32_t kind = std::exchange(fault_plan->kind, FAULT_NONE);
      const int failAt = std::exchange(services.failAt, 0);
      _dialog.action = [](LM_globals* g) {
        g->gloss = 222;
        return int16_t{CV_RESULT_OK};
      };
      EXPECT_EQ(RunWithDialog(host), CV_RESULT_OK);
      before = host.out;
      fault_plan->kind = kind;
      services = {services.service, failAt, 0, false};
    }
    const std::vector<char> kept = host.Kept();
    _dialog.action = act;
    const int16_t result = RunWithDialog(host);
    const std::vector<uint8_t> lit = host.out;
    const uint32_t kind = std::exchange(fault_plan->kind, FAULT_NONE);
    services.failAt = 0;
    if (!isAccepted) {
      EXPECT_NE(result, CV_RESULT_OK);
      EXPECT_EQ(host.Kept(), kept) << "the settings are not as before";
      if (history == History::Later) {
        EXPECT_EQ(host.Run(), CV_RESULT_OK);
        EXPECT_EQ(host.out, before);
      }
    }
    // Done again, it succeeds.
    EXPECT_EQ(RunWithDialog(host), CV_RESULT_OK);
    EXPECT_TRUE(result != CV_RESULT_OK || host.out == lit);
    fault_plan->kind = kind;
    return result;
  }

private:
  ScriptedDialog _dialog;
};

TEST_F(SessionFault, AskingForTheFreeMemoryNeedsNone) {
  TryEachFailure(FAULT_MEMORY, "allocations refused while looking at the free memory", [] {
    TB_ResetMemoryBudget();
    const Exposed exposed;
    DisposePtr(NewPtr(1 << 20));
  });
}

TEST_F(SessionFault, ResourcesAreWholeOrRefused) {
  TryEachFailure(
      FAULT_MEMORY, "allocations refused while reading the resources",
      [] {
        TB_ForgetResources();
        for (int attempt = 0; attempt < 2; ++attempt) {
          Str255 name = {0};
          try {
            const Exposed exposed;
            TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
            GetIndString(name, 138, 1);
            EXPECT_EQ(TB_StdString(name), "Lighting Styles");
          } catch (const std::bad_alloc&) {
            EXPECT_EQ(attempt, 0);
          }
        }
      },
      Pace::Some);
}

TEST_F(SessionFault, MemoryShortAtEachAllocation) {
  // Only what makes the work faster can be done without.
  const auto expectNoMemory = [](int16_t result) {
    EXPECT_TRUE(result == CV_RESULT_OK || (HasFailed() && result == CV_RESULT_NO_MEMORY)) << result;
  };
  for (const bool relief : {false, true}) {
    TryEachFailure(FAULT_MEMORY,
                   relief ? "allocations refused in runs with relief"
                          : "allocations refused in flat runs",
                   [&] { expectNoMemory(Repeat(relief)); });
    for (const History history : {History::First, History::Later})
      TryEachFailure(FAULT_MEMORY,
                     relief ? "allocations refused in interactive runs with relief"
                            : "allocations refused in interactive flat runs",
                     [&] { expectNoMemory(Interact(relief, history)); });
  }
}

// Makes each call of each service fail in turn; the results that `expected` names may come of it.
void TryEachService(const char* runs, const std::function<int16_t()>& run,
                    const std::function<bool(Service, int16_t)>& expected) {
  for (int service = 0; service < SERVICES; ++service) {
    int failed = 0;
    // The cancel test is called for every row.
    for (int n = 1;; n += service == TEST_CANCEL ? ROWS : 1, ++failed) {
      services = {static_cast<Service>(service), n, 0, false};
      const uint64_t blocks = TB_BlocksInUse();
      const int16_t result = run();
      EXPECT_EQ(TB_BlocksInUse(), blocks);
      if (!services.hasFailed) {
        EXPECT_EQ(result, CV_RESULT_OK);
        break;
      }
      EXPECT_TRUE(expected(services.service, result))
          << runs << ", " << SERVICE_NAMES[service] << ", call " << n << ": " << result;
    }
    if (failed > 0)
      std::printf("counted: %s calls failed in %s %d\n", SERVICE_NAMES[service], runs, failed);
  }
}

TEST_F(SessionFault, AnErrorFromEachServiceAtEachCall) {
  for (const bool relief : {false, true}) {
    // Without a dialog only a cancel between tiles of relief ends the run.
    TryEachService(
        relief ? "runs with relief" : "flat runs", [&] { return Repeat(relief); },
        [&](Service service, int16_t result) {
          return result == CV_RESULT_OK ||
                 (service == TEST_CANCEL && relief && result == CV_RESULT_STOPPED);
        });
    for (const History history : {History::First, History::Later})
      TryEachService(
          relief ? "interactive runs with relief" : "interactive flat runs",
          [&] { return Interact(relief, history); },
          [&](Service service, int16_t result) {
            if (service == NEXT_TILE)
              return result == TROUBLE;
            return result == CV_RESULT_OK || (service == QUERY_PROPERTY && result == TROUBLE) ||
                   (service == TEST_CANCEL && relief && result == CV_RESULT_STOPPED);
          });
  }
}

} // namespace
