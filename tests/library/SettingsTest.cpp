// The settings of the C library: where they come from, what is wrong with them, what they hold.
#include <limn.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

namespace {

using Settings = std::unique_ptr<limn_settings, decltype(&limn_settings_free)>;

Settings ThreeLights() {
  return {limn_settings_from_json(R"({"gloss": 180, "lights": [{"type": "omni"}, {"type": "spot"},
                                      {"type": "directional"}]})",
                                  nullptr),
          limn_settings_free};
}

TEST(LibrarySettings, SayWhatIsWrongWithAStyle) {
  limn_error error;
  const std::pair<const char*, limn_result> files[] = {{"/nowhere/at all", LIMN_CANNOT_READ},
                                                       {"/tmp", LIMN_CANNOT_READ},
                                                       {"/dev/zero", LIMN_CANNOT_READ},
                                                       {"/proc/self/status", LIMN_BAD_STYLE}};
  for (const auto& [path, code] : files) {
    EXPECT_EQ(limn_settings_load(path, &error), nullptr) << path;
    EXPECT_EQ(error.code, code) << path;
    EXPECT_EQ(std::string(error.text).rfind(std::string(path) + ": ", 0), 0U) << error.text;
  }
  for (const char* text : {"", "{", "[]", "{}", R"({"gloss": 70000})", R"({"lights": []})"}) {
    EXPECT_EQ(limn_settings_from_json(text, &error), nullptr) << text;
    EXPECT_EQ(error.code, LIMN_BAD_STYLE) << text;
    EXPECT_NE(error.text[0], '\0') << text;
  }
  EXPECT_EQ(limn_settings_bundled("No Such Style", &error), nullptr);
  // As much of a name as fits, and no half character.
  std::string longName;
  for (int i = 0; i < 300; ++i)
    longName += "ö";
  EXPECT_EQ(limn_settings_load(longName.c_str(), &error), nullptr);
  EXPECT_EQ(std::string(error.text), longName.substr(0, 506));
  // Whatever bytes the caller hands over, the sentence can be decoded.
  const std::pair<const char*, const char*> damaged[] = {
      {"/nowhere/\xFF!", "/nowhere/\uFFFD!"},
      {"\xC3\xA9\xE2\x82", "\u00E9\uFFFD\uFFFD"},
      {"\xED\xA0\x80 \xC0\xAF", "\uFFFD\uFFFD\uFFFD \uFFFD\uFFFD"}};
  for (const auto& [name, shown] : damaged) {
    EXPECT_EQ(limn_settings_load(name, &error), nullptr);
    EXPECT_EQ(std::string(error.text), std::string(shown) + ": no such file or directory");
    EXPECT_EQ(limn_settings_set(ThreeLights().get(), name, "1", &error), LIMN_BAD_ARGUMENT);
    EXPECT_EQ(std::string(error.text), std::string(shown) + ": there is no such setting");
  }
  EXPECT_EQ(limn_settings_load(std::string(600, '\xFF').c_str(), &error), nullptr);
  EXPECT_EQ(std::string(error.text).size(), 3U * 169);
}

TEST(LibrarySettings, TakeFieldsAndTellThem) {
  Settings settings = ThreeLights();
  const auto json = [](const limn_settings* of) {
    std::string text(limn_settings_json(of, nullptr, 0) + 1, '?');
    limn_settings_json(of, text.data(), text.size());
    return text;
  };
  limn_error error;
  EXPECT_EQ(limn_settings_set(settings.get(), "light.3.type", "omni", &error), LIMN_OK);
  const std::string whole = json(settings.get());
  EXPECT_EQ(
      json(Settings(limn_settings_from_json(whole.c_str(), nullptr), limn_settings_free).get()),
      whole);
  EXPECT_EQ(json(Settings(limn_settings_copy(settings.get(), nullptr), limn_settings_free).get()),
            whole);
  for (const auto& [key, value] : {std::pair{"glos", "1"},
                                   {"gloss", "x"},
                                   {"gloss", "99999"},
                                   {"light.7.type", "omni"},
                                   {"ambientColor", "1,2,70000"}}) {
    EXPECT_EQ(limn_settings_set(settings.get(), key, value, &error), LIMN_BAD_ARGUMENT) << key;
    EXPECT_EQ(json(settings.get()), whole) << key << " left something changed";
  }
  char cut[5];
  EXPECT_EQ(limn_settings_json(settings.get(), cut, sizeof cut), whole.size() - 1);
  EXPECT_EQ(std::string(cut), whole.substr(0, 4));
  EXPECT_GT(limn_bundled_name(0, cut, sizeof cut), 0U);
  EXPECT_EQ(limn_bundled_name(9999, cut, sizeof cut), 0U);
}

} // namespace
