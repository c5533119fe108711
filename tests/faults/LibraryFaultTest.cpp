// The C library with memory refused at every step: an error, and the output as it was.
#include "FaultRun.h"

#include <limn.h>

#include <memory>
#include <vector>

namespace {

constexpr int WIDTH = 300;
constexpr int HEIGHT = 260; // several bands
constexpr const char* STYLE = R"({"bumpChannel": %c, "gloss": 180, "lights": [
  {"type": "omni", "center": [20, -30], "color": [65535, 30000, 9000]}, {"type": "directional"}]})";

class LibraryFault : public FaultTest {};

limn_result Light(const std::string& style, std::vector<uint8_t>& pixels) {
  const Exposed exposed;
  limn_error error;
  const std::unique_ptr<limn_settings, decltype(&limn_settings_free)> settings(
      limn_settings_from_json(style.c_str(), &error), limn_settings_free);
  if (settings == nullptr)
    return error.code;
  limn_picture picture = {};
  picture.width = WIDTH;
  picture.height = HEIGHT;
  picture.channels = 3;
  picture.source = picture.output = pixels.data();
  const limn_options options = {2, nullptr, nullptr};
  return limn_light(settings.get(), &picture, &options, &error);
}

TEST_F(LibraryFault, LeavesTheOutputWhenMemoryIsShort) {
  std::vector<uint8_t> noise(WIDTH * HEIGHT * 3);
  for (size_t i = 0; i < noise.size(); ++i)
    noise[i] = static_cast<uint8_t>(i * 2654435761U >> 24);
  for (const char channel : {'0', '2'}) {
    std::string style = STYLE;
    style.replace(style.find("%c"), 2, 1, channel);
    std::vector<uint8_t> lit = noise;
    ASSERT_EQ(Light(style, lit), LIMN_OK);
    TryEachFailure(FAULT_MEMORY,
                   channel == '0' ? "allocations refused in the C library, flat"
                                  : "allocations refused in the C library, with relief",
                   [&] {
                     std::vector<uint8_t> pixels = noise;
                     const limn_result result = Light(style, pixels);
                     // Where only a further thread could not be had, the work is done without it.
                     EXPECT_TRUE(result == LIMN_OK || (HasFailed() && result == LIMN_NO_MEMORY))
                         << result;
                     EXPECT_TRUE(pixels == (result == LIMN_OK ? lit : noise));
                   });
  }
}

} // namespace
