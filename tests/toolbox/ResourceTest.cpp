// Texts by number and language.
#include "LimnResources.h"
#include "MacResources.h"
#include "MacStrings.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

TB_EmbeddedFile File(const char* path, const char* content) {
  return {path, reinterpret_cast<const unsigned char*>(content), strlen(content)};
}

std::string Item(int16_t list, int16_t index) {
  Str255 text;
  memset(text, 'x', sizeof text);
  GetIndString(text, list, index);
  return TB_StdString(text);
}

class ResourceTest : public testing::Test {
protected:
  void TearDown() override {
    TB_ForgetResources();
    TB_SetLanguage("");
  }
};

const TB_EmbeddedFile FILES[] = {
    File("en/a.json", R"({"STR#": {"1": ["one", "two", "three"], "2": ["only"]}})"),
    File("en/b.json", R"({"STR#": {"3": [1, null]},
                          "DLOG": {"9": {"items": [{"number": 2, "text": "No"},
                                     {"number": 1, "text": "OK", "rect": [1, 2, 3, 4]}]}}})"),
    File("de/a.json", R"({"STR#": {"1": ["eins", null]},
                          "DLOG": {"9": {"items": [{"number": 1, "text": "Gut"},
                                                               {"number": 3, "text": "Neu"}]}}})"),
    File("icons/128.svg", "<svg/>"),
    File("styles/Dusk.json", "no resource"),
    File("de/flag.svg", "black red gold"),
    File("en/flag.svg", "red white blue"),
};

} // namespace

TEST_F(ResourceTest, StringsByListAndIndex) {
  EXPECT_EQ(Item(1, 1), "") << "no resources yet";
  TB_SetLanguage("en");
  ASSERT_TRUE(TB_UseResources(FILES, std::size(FILES)));
  ASSERT_TRUE(TB_UseResources(FILES, std::size(FILES))) << "again";
  EXPECT_EQ(Item(1, 3), "three");
  EXPECT_EQ(Item(2, 1), "only");
  for (int16_t index : {-1, 0, 4, INT16_MAX, INT16_MIN}) {
    EXPECT_EQ(Item(1, index), "") << index;
  }
  EXPECT_EQ(Item(3, 1), "") << "not a text";
  EXPECT_EQ(Item(4, 1), "") << "no such list";
  const nlohmann::json* dialog = TB_Resource("DLOG", 9);
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ((*dialog)["items"][1]["rect"][3], 4);
  EXPECT_EQ(TB_Resource("DLOG", 10), nullptr);
  EXPECT_EQ(TB_Resource("ALRT", 9), nullptr);
  EXPECT_EQ(TB_ResourceFile("icons/128.svg"), "<svg/>");
  EXPECT_EQ(TB_ResourceFile("icons/129.svg"), "");
  EXPECT_EQ(TB_ResourceFile("styles/Dusk.json"), "no resource");
}

TEST_F(ResourceTest, AnotherLanguageLiesOverEnglish) {
  TB_UseResources(FILES, std::size(FILES));
  struct Case {
    const char* chosen;
    const char* text;
  };
  for (const Case& c :
       {Case{"de", "eins"}, Case{"de_AT.UTF-8@euro", "eins"}, Case{"de-CH", "eins"},
        Case{"fr_FR.UTF-8", "one"}, Case{"C", "one"}, Case{"POSIX", "one"}, Case{"../de", "one"}}) {
    TB_SetLanguage(c.chosen);
    EXPECT_EQ(Item(1, 1), c.text) << c.chosen;
  }
  TB_SetLanguage("de");
  EXPECT_EQ(Item(1, 1), "eins");
  EXPECT_EQ(Item(1, 2), "two");
  EXPECT_EQ(Item(1, 3), "three");
  EXPECT_EQ(Item(2, 1), "only");
  const nlohmann::json& items = (*TB_Resource("DLOG", 9))["items"];
  ASSERT_EQ(items.size(), 3U);
  EXPECT_EQ(items[0]["text"], "No") << "items are matched by number, not by place";
  EXPECT_EQ(items[1]["text"], "Gut");
  EXPECT_EQ(items[1]["rect"], (nlohmann::json{1, 2, 3, 4}));
  EXPECT_EQ(items[2]["text"], "Neu");
  EXPECT_EQ(TB_ResourceFile("flag.svg"), "black red gold");
  TB_SetLanguage("en");
  EXPECT_EQ(Item(1, 1), "one");
  EXPECT_EQ(TB_ResourceFile("flag.svg"), "red white blue");
}

TEST_F(ResourceTest, TheEnvironmentChoosesTheLanguage) {
  TB_UseResources(FILES, std::size(FILES));
  struct Case {
    const char* all;
    const char* messages;
    const char* lang;
    const char* text;
  };
  for (const Case& c : {Case{"", "", "de_DE.UTF-8", "eins"}, Case{"", "C", "de_DE.UTF-8", "one"},
                        Case{"de_DE", "en_GB", "en_GB", "eins"}, Case{"", "", "", "one"}}) {
    setenv("LC_ALL", c.all, 1);
    setenv("LC_MESSAGES", c.messages, 1);
    setenv("LANG", c.lang, 1);
    TB_SetLanguage("");
    EXPECT_EQ(Item(1, 1), c.text) << c.all << "," << c.messages << "," << c.lang;
  }
}

TEST_F(ResourceTest, DamagedFilesAreRefusedAndTheRestIsUsed) {
  for (const char* content : {"", "{", "[]", "null", R"({"STR": {}})", R"({"STR#": []})",
                              R"({"STR#": {"x": []}})", R"({"STR#": {"99999": []}})"}) {
    const TB_EmbeddedFile files[] = {File("en/bad.json", content),
                                     File("en/good.json", R"({"STR#": {"1": ["good"]}})")};
    EXPECT_FALSE(TB_UseResources(files, std::size(files))) << content;
    EXPECT_EQ(Item(1, 1), "good") << content;
    TB_ForgetResources();
  }
}

TEST_F(ResourceTest, ThePlugInsTextsAreComplete) {
  ASSERT_TRUE(TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT));
  TB_SetLanguage("en");
  for (int16_t list = 134; list <= 141; ++list) {
    const bool pair = list == 134 || list == 139;
    EXPECT_NE(Item(list, 1), "") << list;
    EXPECT_EQ(Item(list, 2).empty(), !pair) << list;
  }
  EXPECT_EQ(Item(138, 1).find('/'), std::string::npos);
  EXPECT_LE(Item(141, 1).size(), 31U);
  for (int16_t alert : {16000, 16001, 16002, 16003, 16007, 16008, 16009, 16010}) {
    const nlohmann::json* resource = TB_Resource("ALRT", alert);
    ASSERT_NE(resource, nullptr) << alert;
    EXPECT_EQ((*resource)["kind"], alert == 16001 ? "about" : "stop");
    const bool named = (*resource)["text"].get<std::string>().find("^0") != std::string::npos;
    EXPECT_EQ(named, alert == 16009 || alert == 16010) << alert;
  }
}
