// Interactive runs of the session, with a scripted dialog in the dialog's place.
#include "LM_dialog_services.h"
#include "LM_preview.h"
#include "LM_session.h"
#include "MacMemory.h"
#include "ScriptedHost.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

// What the scripted dialog does to the settings, and what it answers.
std::function<int16_t(LM_globals*)> dialogAction;
Rect previewBox;
int disposed = 0;

int16_t Construct(FilterRecord*, LM_globals* g) {
  static char standIn;
  g->dialog = reinterpret_cast<GrafPort*>(&standIn);
  previewBox = {112, 12, 368, 268};
  return CV_RESULT_OK;
}
void Dispose(LM_globals* g) {
  g->dialog = nullptr;
  ++disposed;
}
int16_t RunDialog(FilterRecord*, LM_globals* g) {
  if (g->UseCurrentSettings() == 0)
    g->Default();
  g->InvalidateCaches();
  const int16_t result = dialogAction(g);
  g->FreeCaches();
  Dispose(g);
  return result;
}
Rect ItemBox(LM_globals*, int16_t item) {
  return item == LM_ITEM_WORK_AREA ? Rect{100, 0, 380, 280} : previewBox;
}
void SetItemBox(LM_globals*, int16_t, const Rect& box) {
  previewBox = box;
}
void RedrawItem(LM_globals*, int16_t) {}
void SetCursor() {}

const LM_dialog_services SCRIPTED = {Construct,  RunDialog,  Dispose,   ItemBox,
                                     SetItemBox, RedrawItem, SetCursor, SetCursor};

int Entry(int selector, void* record, intptr_t* data, int16_t* result) {
  LM_AnswerCall(static_cast<int16_t>(selector), record, data, result);
  return 0;
}

class InteractiveRun : public testing::Test {
protected:
  void SetUp() override { LM_SetDialogServices(&SCRIPTED); }
  void TearDown() override {
    LM_SetDialogServices(nullptr);
    dialogAction = nullptr;
  }
  static LM_globals* Settings(const ScriptedHost& host) {
    return reinterpret_cast<LM_globals*>(host.data);
  }
  // Parameters, start, preview tiles, dialog, tiles, finish.
  static int16_t RunWithDialog(ScriptedHost& host) {
    int16_t result = host.Call(CV_SEL_PARAMETERS);
    if (result == CV_RESULT_OK)
      result = host.Call(CV_SEL_START);
    if (result == CV_RESULT_OK)
      result = Preview(host);
    if (result == CV_RESULT_OK)
      result = host.Walk();
    if (host.data != 0) {
      EXPECT_EQ(host.Call(CV_SEL_FINISH), CV_RESULT_OK);
    }
    return result;
  }
  // The preview's walk ends with an empty input rectangle, behind which one more continue runs the
  // dialog.
  static int16_t Preview(ScriptedHost& host) {
    int16_t result = CV_RESULT_OK;
    while (result == CV_RESULT_OK && Settings(host)->previewComplete == 0) {
      host.requests.push_back(Line(host.record));
      host.Deliver();
      result = host.Call(CV_SEL_CONTINUE);
    }
    return result == CV_RESULT_OK ? host.Call(CV_SEL_CONTINUE) : result;
  }
};

TEST_F(InteractiveRun, LightsAsTheDialogLeftTheSettings) {
  ScriptedHost host(600, 200, Entry);
  dialogAction = [&](LM_globals* g) {
    EXPECT_EQ(g->previewScale, 3); // 600 over 256 is 2, where 300 would not fit
    EXPECT_EQ(g->previewWidth, 200);
    EXPECT_EQ(g->previewHeight, 67);
    EXPECT_EQ(previewBox.right - previewBox.left, 200);
    // Preview pixel (row, column) is image pixel 3 * (row, column).
    const uint8_t* pixels = g->previewMaps[LM_PREVIEW_MAP].baseAddress;
    for (const auto& [row, column] : {std::pair{0, 0}, {66, 199}, {40, 100}})
      EXPECT_EQ(pixels[row * g->previewMaps[LM_PREVIEW_MAP].rowBytes + column * 3 + 1],
                host.image[static_cast<size_t>((row * 3 * 600 + column * 3) * 4 + 1)]);
    g->exposure = 200;
    return CV_RESULT_OK;
  };
  ASSERT_EQ(RunWithDialog(host), CV_RESULT_OK);
  EXPECT_EQ(host.requests.front(), "in 0,0-63,63 planes 0..2 out 0,0-63,1");
  EXPECT_EQ(host.requests[4 * 10], "in 0,0-64,64 planes 0..2 out 0,0-64,64");
  EXPECT_EQ(Settings(host)->UseCurrentSettings(), 1);

  // The same settings without a dialog give the same picture.
  const std::vector<uint8_t> lit = host.out;
  host.out.assign(host.out.size(), 0);
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  EXPECT_EQ(host.out, lit);
}

TEST_F(InteractiveRun, CancelForgetsAFirstRunAndRestoresALaterOne) {
  ScriptedHost host(40, 30, Entry);
  dialogAction = [](LM_globals* g) {
    g->exposure = 11;
    return CV_RESULT_STOPPED;
  };
  EXPECT_EQ(RunWithDialog(host), CV_RESULT_STOPPED);
  EXPECT_EQ(host.data, 0);

  dialogAction = [](LM_globals* g) {
    EXPECT_EQ(g->exposure, 128);
    g->CreateNewLight(100, 150);
    g->gloss = 99;
    return CV_RESULT_OK;
  };
  ASSERT_EQ(RunWithDialog(host), CV_RESULT_OK);
  const std::vector<uint8_t> lit = host.out;
  dialogAction = [](LM_globals* g) {
    EXPECT_EQ(g->gloss, 99);
    EXPECT_EQ(g->numLights, 2);
    g->AllocateCaches(40, 30, 0);
    g->gloss = 1;
    g->DeleteCurrentLight();
    return CV_RESULT_STOPPED;
  };
  EXPECT_EQ(RunWithDialog(host), CV_RESULT_STOPPED);
  ASSERT_NE(host.data, 0);
  EXPECT_EQ(Settings(host)->gloss, 99);
  EXPECT_EQ(Settings(host)->numLights, 2);
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  EXPECT_EQ(host.out, lit) << "the kept block is that of the last OK";
}

TEST_F(InteractiveRun, FailuresAtEveryStepEndInTheirCodeAndLeakNothing) {
  dialogAction = [](LM_globals* g) {
    g->SetBumpChannel(4);
    const int16_t result = LM_GetPreviewBumpPixelMap(g);
    return result != CV_RESULT_OK ? result : LM_GeneratePreview(nullptr, g);
  };
  for (uint64_t n = 1;; ++n) {
    const uint64_t blocks = TB_BlocksInUse();
    bool failed = false;
    {
      ScriptedHost host(300, 300, Entry);
      const uint64_t before = TB_AllocationCount();
      TB_FailAllocationAfter(n);
      const int16_t result = RunWithDialog(host);
      failed = TB_AllocationCount() - before >= n;
      TB_FailAllocationAfter(0);
      // Only the shading caches can be done without.
      EXPECT_TRUE(result == CV_RESULT_OK || (failed && result == CV_RESULT_NO_MEMORY))
          << n << ": " << result;
    }
    EXPECT_EQ(TB_BlocksInUse(), blocks) << "left behind at allocation " << n;
    if (!failed)
      break;
  }
  ScriptedHost host(300, 300, Entry);
  host.nextTileResult = -123;
  EXPECT_EQ(RunWithDialog(host), -123);
}

TEST_F(InteractiveRun, WithoutADialogAnInteractiveRunIsRefused) {
  LM_SetDialogServices(nullptr);
  ScriptedHost host(8, 8, Entry);
  EXPECT_EQ(host.Call(CV_SEL_PARAMETERS), CV_RESULT_OK);
  EXPECT_EQ(host.Call(CV_SEL_START), LM_RESULT_NO_DIALOG);
  EXPECT_EQ(Settings(host)->dialogPending, 0);
}

} // namespace
