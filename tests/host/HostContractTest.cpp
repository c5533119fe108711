// The order of calls and requests, and the result codes.
#include "LM_dialog_services.h"
#include "LM_parameters.h"
#include "MacDialogs.h"
#include "MacMemory.h"
#include "ScriptedHost.h"

#include <cfenv>
#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

std::vector<int> alerts;
int16_t CollectAlert(const TB_Message& message, void*, ModalFilterUPP) {
  alerts.push_back(message.number);
  return 1;
}

class HostContract : public testing::Test {
protected:
  void SetUp() override {
    alerts.clear();
    TB_SetAlertPresenter(CollectAlert);
    TB_SetAboutPresenter(CollectAlert);
  }
};

TEST_F(HostContract, FlatRunAsksForEachTileOnceLeftToRightThenDown) {
  ScriptedHost host(130, 65);
  host.KeepParameters(OneLight(false));
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  EXPECT_EQ(host.requests,
            (std::vector<std::string>{"in 0,0-64,64 planes 0..2 out 0,0-64,64",
                                      "in 64,0-128,64 planes 0..2 out 64,0-128,64",
                                      "in 128,0-130,64 planes 0..2 out 128,0-130,64",
                                      "in 0,64-64,65 planes 0..2 out 0,64-64,65",
                                      "in 64,64-128,65 planes 0..2 out 64,64-128,65",
                                      "in 128,64-130,65 planes 0..2 out 128,64-130,65"}));
  EXPECT_EQ(host.progressReports, 7); // one at the start
}

TEST_F(HostContract, ReliefRunAsksTwicePerTileAndReportsOnce) {
  ScriptedHost host(65, 10);
  host.KeepParameters(OneLight(true));
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  EXPECT_EQ(host.requests, (std::vector<std::string>{
                               "in -3,-3-67,13 planes 3..3 absolute replicated out 0,0-0,0",
                               "in 0,0-64,10 planes 0..2 out 0,0-64,10",
                               "in 61,-3-68,13 planes 3..3 absolute replicated out 64,0-64,0",
                               "in 64,0-65,10 planes 0..2 out 64,0-65,10"}));
  EXPECT_EQ(host.progressReports, 3);
}

TEST_F(HostContract, RefusesHostsAndImagesItCannotServe) {
  const struct {
    const char* name;
    void (*spoil)(FilterRecord&);
    int16_t result;
    int alert;
  } cases[] = {
      {"no pixels shown", [](FilterRecord& r) { r.showPixels = nullptr; }, CV_RESULT_STOPPED,
       16000},
      {"foreign host", [](FilterRecord& r) { r.hostSignature ^= 1; }, CV_RESULT_STOPPED, 16000},
      {"grey image", [](FilterRecord& r) { r.colorMode = CV_MODE_GRAY; }, CV_RESULT_BAD_MODE, 0},
      {"no next tile", [](FilterRecord& r) { r.nextTile = nullptr; }, CV_RESULT_STOPPED, 16000},
      {"no absolute planes", [](FilterRecord& r) { r.absolutePlanesSupported = 0; },
       CV_RESULT_STOPPED, 16000},
      {"all well", [](FilterRecord&) {}, CV_RESULT_OK, 0}};
  for (const auto& c : cases) {
    alerts.clear();
    ScriptedHost host(8, 8);
    c.spoil(host.record);
    EXPECT_EQ(host.Call(LM_SEL_PREPARE), c.result) << c.name;
    EXPECT_EQ(alerts, c.alert != 0 ? std::vector<int>{c.alert} : std::vector<int>{}) << c.name;
  }
}

TEST_F(HostContract, SelectorsAndStateObject) {
  ScriptedHost host(8, 8);
  EXPECT_EQ(host.Call(LM_SEL_FINISH), CV_RESULT_OK);
  EXPECT_EQ(host.data, 0) << "a finish makes no object";
  EXPECT_EQ(host.Call(LM_SEL_ABOUT), CV_RESULT_OK);
  EXPECT_EQ(alerts, std::vector<int>{16001});
  const intptr_t object = host.data;
  EXPECT_NE(object, 0);
  for (const int selector : {6, -1, 32767})
    EXPECT_EQ(host.Call(selector), CV_RESULT_BAD_SELECTOR) << selector;
  EXPECT_EQ(host.Call(0x70005), CV_RESULT_OK) << "only the low 16 bits count";
  EXPECT_EQ(host.data, object);
}

TEST_F(HostContract, StartWithoutParametersIsRefusedAndContinueWithoutStartToo) {
  ScriptedHost host(8, 8);
  EXPECT_EQ(host.Call(LM_SEL_CONTINUE), CV_RESULT_STOPPED);
  EXPECT_EQ(host.Call(LM_SEL_START), CV_RESULT_STOPPED);
  host.record.savedParams = NewHandle(100); // not a block of ours
  EXPECT_EQ(host.Call(LM_SEL_START), CV_RESULT_STOPPED);
}

TEST_F(HostContract, OnlyReliefRunsCanBeCancelled) {
  for (const bool relief : {false, true}) {
    ScriptedHost host(200, 200);
    host.KeepParameters(OneLight(relief));
    host.cancelAfter = 3;
    EXPECT_EQ(host.Run(), relief ? CV_RESULT_STOPPED : CV_RESULT_OK);
    EXPECT_EQ(host.continues, relief ? 3 : 16);
    // Nothing of a cancelled run's requests is left in the next one's.
    host.cancelAfter = -1;
    host.requests.clear();
    host.record.inSampleStep = host.record.maskSampleStep = 0; // the plug-in's to write
    host.KeepParameters(OneLight(false));
    EXPECT_EQ(host.Run(), CV_RESULT_OK);
    EXPECT_EQ(host.record.inSampleStep, CV_FIXED_ONE);
    EXPECT_EQ(host.record.maskSampleStep, CV_FIXED_ONE);
    EXPECT_EQ(host.requests.front(), "in 0,0-64,64 planes 0..2 out 0,0-64,64");
  }
}

// Also a negative one; a kept block may come from another document.
TEST_F(HostContract, ChannelThatTheImageLacksMeansNoRelief) {
  for (const int16_t channel : {int16_t{5}, int16_t{-3}}) {
    ScriptedHost host(30, 30);
    host.KeepParameters(OneLight(false));
    reinterpret_cast<foo*>(*host.record.savedParams)->bumpChannel = channel;
    ASSERT_EQ(host.Run(), CV_RESULT_OK);
    EXPECT_EQ(host.continues, 1) << channel;
  }
}

// That runs repeat exactly, two thousand of them show.
TEST_F(HostContract, ASecondStartReplacesTheFirst) {
  ScriptedHost host(70, 70);
  host.KeepParameters(OneLight(true));
  ASSERT_EQ(host.Run(), CV_RESULT_OK);
  const std::vector<uint8_t> first = host.out;
  ASSERT_EQ(host.Call(LM_SEL_START), CV_RESULT_OK); // never finished
  const uint64_t blocks = TB_BlocksInUse();
  ASSERT_EQ(host.Call(LM_SEL_START), CV_RESULT_OK);
  EXPECT_EQ(TB_BlocksInUse(), blocks) << "a second start leaks";
  ASSERT_EQ(host.Walk(), CV_RESULT_OK);
  EXPECT_EQ(host.out, first);
}

// Some programs round upwards; the plug-in does not, and leaves them as they are.
TEST_F(HostContract, RunsHaveTheirOwnFloatingPoint) {
  for (const bool relief : {false, true}) {
    ScriptedHost host(140, 70);
    host.KeepParameters(OneLight(relief));
    ASSERT_EQ(host.Run(), CV_RESULT_OK);
    const std::vector<uint8_t> expected = host.out;
    std::fesetround(FE_UPWARD);
    const int16_t result = host.Run();
    const int rounding = std::fegetround();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(result, CV_RESULT_OK);
    EXPECT_EQ(rounding, FE_UPWARD);
    EXPECT_TRUE(host.out == expected) << (relief ? "in relief" : "flat");
  }
}

// At the far end of 16-bit coordinates margins cannot be asked for in full.
TEST_F(HostContract, ReliefAtTheLargestImageEqualsTheSamePixelsElsewhere) {
  LM_style style = OneLight(true);
  style.lights[0].type = LM_STYLE_DIRECTIONAL;
  std::vector<uint8_t> rightmost[2];
  for (const int16_t width : {int16_t{32767}, int16_t{32703}}) {
    ScriptedHost host(width, 2);
    // The same picture counted from the right edge.
    for (int y = 0; y < 2; ++y) {
      for (int x = 0; x < width; ++x)
        for (int plane = 0; plane < 4; ++plane)
          host.image[static_cast<size_t>((y * width + x) * 4 + plane)] =
              static_cast<uint8_t>((width - x) * 37 + y * 91 + plane * 5);
    }
    host.KeepParameters(style);
    ASSERT_EQ(host.Run(), CV_RESULT_OK);
    rightmost[width == 32767].assign(host.out.end() - 100 * 3, host.out.end());
  }
  EXPECT_EQ(rightmost[0], rightmost[1]);
}

TEST(HostFault, HostThatDeliversOtherRectanglesDoesNoHarm) {
  ScriptedHost host(100, 100);
  host.KeepParameters(OneLight(true));
  ASSERT_EQ(host.Call(LM_SEL_START), CV_RESULT_OK);
  std::vector<uint8_t> pixels(100 * 100 * 4, 9);
  const auto deliver = [&](CVRect rect) {
    host.record.inTileRect = rect;
    host.record.outTileRect = rect;
    host.record.inPixels = pixels.data();
    host.record.outPixels = pixels.data();
    host.record.inRowStride = host.record.outRowStride = 300;
  };
  // A small channel tile, then an image tile that its heights do not cover.
  deliver({0, 0, 8, 8});
  EXPECT_EQ(host.Call(LM_SEL_CONTINUE), CV_RESULT_OK);
  deliver({0, 0, 64, 64});
  EXPECT_EQ(host.Call(LM_SEL_CONTINUE), CV_RESULT_OK);
  EXPECT_EQ(pixels, std::vector<uint8_t>(pixels.size(), 9)) << "shaded without heights";
  // Turned inside out, and with nothing delivered.
  deliver({50, 50, 10, 10});
  EXPECT_EQ(host.Call(LM_SEL_CONTINUE), CV_RESULT_OK);
  host.record.inPixels = nullptr;
  EXPECT_EQ(host.Call(LM_SEL_CONTINUE), CV_RESULT_OK);
  // Addresses in a block that comes in place of the run's own are nobody's.
  host.KeepParameters(OneLight(false));
  ASSERT_EQ(host.Call(LM_SEL_START), CV_RESULT_OK);
  LM_light& light = reinterpret_cast<foo*>(*host.record.savedParams)->lights[0];
  light.diffuseCache = light.specularCache = reinterpret_cast<LM_color96*>(intptr_t{64});
  deliver({0, 0, 64, 64});
  EXPECT_EQ(host.Call(LM_SEL_CONTINUE), CV_RESULT_OK);
}

} // namespace
