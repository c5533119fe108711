// Alerts without a screen, and with one.
#include "LimnResources.h"
#include "MacDialogs.h"
#include "MacMemory.h"
#include "MacResources.h"
#include "MacStrings.h"

#include <gtest/gtest.h>

namespace {

class AlertTest : public testing::Test {
protected:
  void SetUp() override {
    TB_SetLanguage("en");
    ASSERT_TRUE(TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT));
  }
  void TearDown() override {
    TB_SetAlertPresenter(nullptr);
    TB_SetAboutPresenter(nullptr);
    TB_ForgetResources();
  }
  static std::string Printed(int16_t number, int16_t expectedItem) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(StopAlert(number, nullptr), expectedItem);
    return testing::internal::GetCapturedStderr();
  }
};

TB_Message shown;
void* shownOn = nullptr;

} // namespace

TEST_F(AlertTest, WithoutAScreenTheTextIsPrinted) {
  ParamText(TB_PString("Dusk\x1b[2J\xff^1"), TB_PString("one"), TB_PString(""), TB_PString(""));
  EXPECT_EQ(Printed(16009, 1), "The style “Dusk?[2J?^1” is locked and cannot be deleted. Allow "
                               "writing to its file first.\n");
  ParamText(nullptr, TB_PString("two"), nullptr, nullptr);
  EXPECT_NE(Printed(16010, 1).find("“Dusk"), std::string::npos) << "null leaves a text alone";
  EXPECT_EQ(Printed(16011, -1), "There is no text for message 16011.\n");
}

TEST_F(AlertTest, ParametersAreFilledInOnce) {
  ParamText(TB_PString("A"), TB_PString("^0"), TB_PString(""), TB_PString("D"));
  EXPECT_EQ(TB_FillInParamText("^0 ^1 ^2 ^3 ^4 ^^0 ^"), "A ^0  D ^4 ^A ^");
}

TEST_F(AlertTest, AScreenTakesOver) {
  auto present = [](const TB_Message& message, void* window, ModalFilterUPP) -> int16_t {
    shown = message;
    shownOn = window;
    return 2;
  };
  EXPECT_EQ(TB_SetAlertPresenter(present), nullptr);
  EXPECT_EQ(StopAlert(16002, nullptr), 2);
  EXPECT_EQ(shown.number, 16002);
  EXPECT_EQ(shown.kind, "stop");
  EXPECT_EQ(shown.buttons, std::vector<std::string>{"OK"});
  EXPECT_NE(TB_SetAlertPresenter(nullptr), nullptr);

  int window = 0;
  const CVAboutRecord about{&window};
  TB_SetAboutPresenter(present);
  ShowAbout(&about, 16001);
  EXPECT_EQ(shown.kind, "about");
  EXPECT_EQ(shownOn, &window);
}

TEST(HostUtilities, AHostsHandleIsReleased) {
  const uint64_t before = TB_BlocksInUse();
  HostDisposeHandle(nullptr, NewHandle(10));
  HostDisposeHandle(nullptr, nullptr);
  EXPECT_EQ(TB_BlocksInUse(), before);
}
