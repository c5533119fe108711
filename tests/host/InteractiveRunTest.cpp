// Interactive runs of the session, with a scripted dialog in the dialog's place.
#include "LM_dialog_services.h"
#include "LM_preview.h"
#include "MacMemory.h"
#include "ScriptedDialog.h"

#include <cstring>
#include <gtest/gtest.h>
#include <new>

namespace {

class InteractiveRun : public testing::Test {
protected:
  ScriptedDialog dialog;
};

TEST_F(InteractiveRun, LightsAsTheDialogLeftTheSettings) {
  ScriptedHost host(600, 200, SessionEntry);
  dialog.action = [&](LM_globals* g) {
    EXPECT_EQ(g->previewScale, 3); // 600 over 256 is 2, where 300 would not fit
    EXPECT_EQ(g->previewWidth, 200);
    EXPECT_EQ(g->previewHeight, 67);
    EXPECT_EQ(dialog.previewBox.right - dialog.previewBox.left, 200);
    // Preview pixel (row, column) is image pixel 3 * (row, column).
    const uint8_t* pixels = g->previewMaps[LM_PREVIEW_MAP].baseAddress;
    for (const auto& [row, column] : {std::pair{0, 0}, {66, 199}, {40, 100}})
      EXPECT_EQ(pixels[row * g->previewMaps[LM_PREVIEW_MAP].rowBytes + column * 3 + 1],
                host.image[static_cast<size_t>((row * 3 * 600 + column * 3) * 4 + 1)]);
    g->exposure = 200;
    // A call out of the dialog's own call is turned away.
    EXPECT_EQ(host.Call(LM_SEL_FINISH), CV_RESULT_STOPPED);
    EXPECT_EQ(host.Call(LM_SEL_START), CV_RESULT_STOPPED);
    const FilterRecord before = host.record;
    EXPECT_EQ(LM_ShadePreview(g), CV_RESULT_OK);
    EXPECT_EQ(host.record.inPixels, before.inPixels);
    EXPECT_EQ(host.record.outPixels, before.outPixels);
    return CV_RESULT_OK;
  };
  ASSERT_EQ(RunWithDialog(host), CV_RESULT_OK);
  EXPECT_EQ(host.requests.front(), "in 0,0-63,63 planes 0..2 out 0,0-63,1");
  EXPECT_EQ(host.requests[4 * 10], "in 0,0-64,64 planes 0..2 out 0,0-64,64");
  EXPECT_EQ(SettingsOf(host)->UseCurrentSettings(), 1);

  // The same settings without a dialog give the same picture.
  const std::vector<uint8_t> lit = host.out;
  host.out.assign(host.out.size(), 0);
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  EXPECT_EQ(host.out, lit);
}

TEST_F(InteractiveRun, CancelForgetsAFirstRunAndRestoresALaterOne) {
  ScriptedHost host(40, 30, SessionEntry);
  dialog.action = [](LM_globals* g) {
    g->exposure = 11;
    return CV_RESULT_STOPPED;
  };
  EXPECT_EQ(RunWithDialog(host), CV_RESULT_STOPPED);
  EXPECT_EQ(host.data, 0);

  dialog.action = [](LM_globals* g) {
    EXPECT_EQ(g->exposure, 128);
    g->CreateNewLight(100, 150);
    g->gloss = 99;
    return CV_RESULT_OK;
  };
  ASSERT_EQ(RunWithDialog(host), CV_RESULT_OK);
  const std::vector<uint8_t> lit = host.out;
  dialog.action = [](LM_globals* g) {
    EXPECT_EQ(g->gloss, 99);
    EXPECT_EQ(g->numLights, 2);
    g->AllocateCaches(40, 30, 0);
    g->gloss = 1;
    g->DeleteCurrentLight();
    return CV_RESULT_STOPPED;
  };
  EXPECT_EQ(RunWithDialog(host), CV_RESULT_STOPPED);
  ASSERT_NE(host.data, 0);
  EXPECT_EQ(SettingsOf(host)->gloss, 99);
  EXPECT_EQ(SettingsOf(host)->numLights, 2);
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  EXPECT_EQ(host.out, lit) << "the kept block is that of the last OK";
}

// A repeat of kept parameters finishes without ever having had settings.
TEST_F(InteractiveRun, AfterARepeatTheDialogBeginsWithDefaults) {
  ScriptedHost host(40, 30, SessionEntry);
  host.KeepParameters(OneLight(false));
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  const std::vector<uint8_t> lit = host.out;
  int lights = 0;
  dialog.action = [&](LM_globals* g) {
    lights = g->numLights;
    return CV_RESULT_STOPPED;
  };
  EXPECT_EQ(RunWithDialog(host), CV_RESULT_STOPPED);
  EXPECT_EQ(lights, 1);
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  EXPECT_EQ(host.out, lit) << "a cancelled dialog changes no kept parameters";
}

// A block from some other program, or cut short: it stays until a dialog is accepted.
TEST_F(InteractiveRun, AnUnreadableBlockMakesWayForTheDialogs) {
  ScriptedHost host(40, 30, SessionEntry);
  const CVHandle unreadable = host.record.savedParams = NewHandle(12);
  std::memset(*unreadable, 0, 12);
  EXPECT_EQ(host.Run(), CV_RESULT_STOPPED);
  for (const int16_t answer : {int16_t{CV_RESULT_STOPPED}, int16_t{CV_RESULT_OK}}) {
    dialog.action = [&](LM_globals* g) {
      EXPECT_EQ(LM_ShadePreview(g), CV_RESULT_OK);
      return answer;
    };
    EXPECT_EQ(RunWithDialog(host), answer);
    EXPECT_EQ(host.record.savedParams == unreadable, answer != CV_RESULT_OK);
  }
  EXPECT_EQ(host.Run(), CV_RESULT_OK);
}

// Memory that runs out inside the dialog's code may end it anywhere, its caches still there. The
// picture's tiles have more pixels than its preview.
TEST_F(InteractiveRun, WhateverTheDialogThrowsIsItsAnswer) {
  ScriptedHost host(5000, 60, SessionEntry);
  host.KeepParameters(OneLight(false));
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  std::vector<uint8_t> lit = host.out;
  for (const int earlierRuns : {0, 1}) {
    dialog.action = [](LM_globals* g) -> int16_t {
      g->exposure = 11;
      EXPECT_EQ(LM_ShadePreview(g), CV_RESULT_OK);
      throw std::bad_alloc();
    };
    EXPECT_EQ(RunWithDialog(host), CV_RESULT_NO_MEMORY);
    EXPECT_EQ(host.data == 0, earlierRuns == 0);
    ASSERT_EQ(host.Run(), CV_RESULT_OK);
    EXPECT_EQ(host.out, lit);
    dialog.action = [](LM_globals* g) {
      EXPECT_EQ(g->exposure, 128);
      return CV_RESULT_OK;
    };
    ASSERT_EQ(RunWithDialog(host), CV_RESULT_OK);
    lit = host.out;
  }
}

TEST_F(InteractiveRun, WithoutADialogAnInteractiveRunIsRefused) {
  LM_SetDialogServices(nullptr);
  ScriptedHost host(8, 8, SessionEntry);
  EXPECT_EQ(host.Call(LM_SEL_PARAMETERS), CV_RESULT_OK);
  EXPECT_EQ(host.Call(LM_SEL_START), CV_RESULT_NO_DIALOG);
  EXPECT_EQ(SettingsOf(host)->dialogPending, 0);
}

} // namespace
