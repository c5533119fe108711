// The layout of the dialogs in every language: what the engine counts on, and room for each text.
#include "DialogRun.h"

#include "LM_drawing_scopes.h"
#include "LM_preview_geometry.h"
#include "LimnResources.h"
#include "MacResources.h"
#include "MacStrings.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

constexpr const char* LANGUAGES[] = {"en", "de"};

struct Language : testing::TestWithParam<const char*> {
  void SetUp() override {
    TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
    TB_SetLanguage(GetParam());
  }
  void TearDown() override { TB_SetLanguage("en"); }
  static std::string Item(int16_t list, int16_t index) {
    Str255 text;
    GetIndString(text, list, index);
    return TB_StdString(text);
  }
  static int Width(const std::string& text, bool small, short face = 0) {
    TextFont(small ? 1 : 0);
    TextSize(small ? 9 : 0);
    TextFace(face);
    const int width = StringWidth(TB_PString(text));
    TextFont(0);
    TextSize(0);
    TextFace(0);
    return width;
  }
};

Rect BoxOf(const json& item) {
  const std::vector<int16_t> box = item["box"];
  return {box[1], box[0], static_cast<int16_t>(box[1] + box[3]),
          static_cast<int16_t>(box[0] + box[2])};
}

int WidthOf(const json& item) {
  return item["box"][2];
}

TEST_P(Language, TheFrameAndTheRangesAreWhatTheEngineCountsOn) {
  const Rect frame = BoxInResource(LM_PARAMETER_DIALOG, LM_WORK_AREA_ITEM);
  const Rect area = BoxInResource(LM_PARAMETER_DIALOG, LM_PREVIEW_ITEM);
  EXPECT_EQ(frame.right - frame.left, LM_FRAME_SIZE);
  EXPECT_EQ(frame.bottom - frame.top, LM_FRAME_SIZE);
  EXPECT_EQ(area.right - area.left, LM_PREVIEW_AREA_SIZE);
  EXPECT_EQ(area.bottom - area.top, LM_PREVIEW_AREA_SIZE);
  EXPECT_EQ(area.left - frame.left, frame.right - area.right);
  EXPECT_EQ(area.top - frame.top, frame.bottom - area.bottom);
  const std::pair<int16_t, int> ranges[] = {
      {LM_GLOSS_ITEM, LM_SLIDER_MAX},
      {LM_MATERIAL_ITEM, LM_MATERIAL_SLIDER_MAX},
      {LM_EXPOSURE_ITEM, LM_SLIDER_MAX},
      {LM_AMBIENCE_ITEM, LM_CENTERED_SLIDER_MAX},
      {LM_INTENSITY_ITEM, LM_CENTERED_SLIDER_MAX},
      {LM_SPREAD_ITEM, LM_SLIDER_MAX},
      {LM_BUMP_AMPLITUDE_ITEM, LM_SLIDER_MAX},
  };
  for (const json& item : (*TB_Resource("DLOG", LM_PARAMETER_DIALOG))["items"]) {
    for (const auto& [number, maximum] : ranges) {
      if (item["number"] == number) {
        EXPECT_EQ(item["min"], 0) << number;
        EXPECT_EQ(item["max"], maximum) << number;
        EXPECT_EQ(item["refCon"][0] == LM_PERCENT_LABELS, number == LM_BUMP_AMPLITUDE_ITEM);
      }
    }
  }
}

// Room for the sign of a check box, the title and the arrow of a popup, the rim of a button.
int RoomBeside(const json& item) {
  const std::string kind = item["kind"];
  const int title = item.value("titleWidth", 0);
  return kind == "checkBox" ? 22 : kind == "popup" ? 30 + title : kind == "button" ? 16 : 0;
}

bool IsSmall(int16_t dialog, const json& item) {
  return item.value("small", false) || (dialog == LM_PARAMETER_DIALOG && item["kind"] != "button" &&
                                        item["kind"] != "staticText");
}

TEST_P(Language, EveryTextHasRoom) {
  for (const int16_t dialog :
       {LM_PARAMETER_DIALOG, LM_SAVE_AS_DIALOG, LM_OVERWRITE_DIALOG, LM_DELETE_DIALOG}) {
    for (const json& item : (*TB_Resource("DLOG", dialog))["items"]) {
      const std::string kind = item["kind"];
      const bool small = IsSmall(dialog, item);
      std::vector<std::string> texts = item.value("choices", std::vector<std::string>());
      if (kind == "popup") {
        EXPECT_LE(Width(item.value("title", ""), small, bold), item.value("titleWidth", 0) - 4)
            << GetParam();
      } else {
        texts.push_back(item.value("title", ""));
      }
      // The name in a question is cut to 31 characters when it comes to that.
      const size_t place = texts.back().find("^0");
      if (place != std::string::npos)
        texts.back().replace(place, 2, "A name of thirty-one characters");
      const int lines = kind == "staticText" ? std::max<int>(1, item["box"][3].get<int>() / 16) : 1;
      const int room =
          kind == "control" ? item["refCon"][1].get<int>() + 2 : WidthOf(item) - RoomBeside(item);
      for (const std::string& text : texts) {
        // Breaking a line leaves some of it unused.
        const int wanted = Width(text, small) * (lines > 1 ? 115 : 100) / 100;
        EXPECT_LE(wanted, room * lines) << GetParam() << ", dialog " << dialog << ": " << text;
      }
    }
  }
}

TEST_P(Language, TheLabelsOfSlidersStayClearOfEachOther) {
  constexpr int NUMBER = 26; // width of the value in the middle
  for (const json& item : (*TB_Resource("DLOG", LM_PARAMETER_DIALOG))["items"]) {
    if (item["kind"] != "control")
      continue;
    const int16_t list = item["refCon"][0];
    const int bar = WidthOf(item) - item["refCon"][1].get<int>() - 9;
    for (const int16_t end : {1, 2}) {
      const std::string label = Item(list, end);
      EXPECT_FALSE(label.empty()) << list;
      EXPECT_LE(Width(label, true), (bar - NUMBER) / 2 - 4) << GetParam() << ": " << label;
    }
  }
  for (const int16_t item : {LM_SAVE_STYLE_ITEM, LM_DELETE_STYLE_ITEM}) {
    const Rect box = BoxInResource(LM_PARAMETER_DIALOG, item);
    const std::string label = Item(LM_SMALL_BUTTON_LABELS, item == LM_SAVE_STYLE_ITEM ? 1 : 2);
    EXPECT_LE(Width(label, true), box.right - box.left - 10) << label;
  }
}

// Items that lie on others by design: outlines, groups, titles on a group's line.
bool MayLieOnOthers(int item) {
  return item == LM_OK_OUTLINE_ITEM || item == LM_PREVIEW_ITEM ||
         (item >= LM_LIGHT_GROUP_ITEM && item <= LM_PROPERTIES_TITLE_ITEM);
}

TEST_P(Language, ItemsLieInTheirDialogAndNotOnEachOther) {
  for (const int16_t dialog :
       {LM_PARAMETER_DIALOG, LM_SAVE_AS_DIALOG, LM_OVERWRITE_DIALOG, LM_DELETE_DIALOG}) {
    const json& resource = *TB_Resource("DLOG", dialog);
    const Rect content = {0, 0, resource["size"][1].get<int16_t>(),
                          resource["size"][0].get<int16_t>()};
    for (const json& item : resource["items"]) {
      const Rect box = BoxOf(item);
      EXPECT_TRUE(box.top >= 0 && box.left >= 0 && box.bottom <= content.bottom &&
                  box.right <= content.right)
          << dialog << " item " << item["number"];
      for (const json& other : resource["items"]) {
        if (other["number"] <= item["number"] || MayLieOnOthers(other["number"]) ||
            MayLieOnOthers(item["number"]))
          continue;
        const Rect otherBox = BoxOf(other);
        EXPECT_TRUE(box.right <= otherBox.left || otherBox.right <= box.left ||
                    box.bottom <= otherBox.top || otherBox.bottom <= box.top)
            << dialog << " items " << item["number"] << " and " << other["number"];
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Shipped, Language, testing::ValuesIn(LANGUAGES),
                         [](const auto& language) { return std::string(language.param); });

} // namespace
