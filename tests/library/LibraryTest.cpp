// The C library as its users have it: through limn.h and the shared library alone.
#include <limn.h>

#include <algorithm>
#include <atomic>
#include <cfenv>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int WIDTH = 300;
constexpr int HEIGHT = 260; // several bands
constexpr uint8_t BESIDE = 0xA7;

// Three lights, of every type, and relief from the green channel.
constexpr const char* STYLE = R"({"bumpChannel": 2, "gloss": 180, "material": 100, "lights": [
  {"type": "omni", "center": [20, -30], "color": [65535, 30000, 9000]},
  {"type": "spot", "center": [-40, 30], "intensity": 90}, {"type": "directional"}]})";

using Settings = std::unique_ptr<limn_settings, decltype(&limn_settings_free)>;
using Lighting = std::unique_ptr<limn_lighting, decltype(&limn_lighting_free)>;
using Bytes = std::vector<uint8_t>;

Settings MakeSettings() {
  return {limn_settings_from_json(STYLE, nullptr), limn_settings_free};
}

const limn_kind KINDS[] = {LIMN_BYTES, LIMN_WORDS, LIMN_FLOATS};
constexpr int ComponentBytes(limn_kind kind) {
  return 1 << kind;
}

// Bytes, words of as many values, or floats from -0.5 to 1.5.
Bytes Noise(size_t components, limn_kind kind = LIMN_BYTES) {
  Bytes bytes(components * static_cast<size_t>(ComponentBytes(kind)));
  uint32_t state = 7;
  for (size_t i = 0; i < components; ++i) {
    state = state * 1664525 + 1013904223;
    if (kind == LIMN_BYTES) {
      bytes[i] = static_cast<uint8_t>(state >> 24);
    } else if (kind == LIMN_WORDS) {
      const auto word = static_cast<uint16_t>(state >> 16);
      std::memcpy(&bytes[i * 2], &word, sizeof word);
    } else {
      const float number = static_cast<float>(state) / 0x1p31F - 0.5F;
      std::memcpy(&bytes[i * 4], &number, sizeof number);
    }
  }
  return bytes;
}

limn_picture Packed(uint8_t* pixels, limn_kind kind = LIMN_BYTES) {
  limn_picture picture = {};
  picture.width = WIDTH;
  picture.height = HEIGHT;
  picture.channels = 3;
  picture.kind = kind;
  picture.source = picture.output = pixels;
  return picture;
}

// The noise picture lit in place, in the plainest way: the measure of all others. What it has to be
// is in test_users.py.
Bytes Plain(limn_area area = {}, limn_kind kind = LIMN_BYTES) {
  Bytes pixels = Noise(WIDTH * HEIGHT * 3, kind);
  limn_picture picture = Packed(pixels.data(), kind);
  picture.area = area;
  const limn_options options = {1, nullptr, nullptr};
  limn_error error;
  EXPECT_EQ(limn_light(MakeSettings().get(), &picture, &options, &error), LIMN_OK) << error.text;
  return pixels;
}

// One way to lay out the pixels in memory.
struct Layout {
  const char* name;
  int channels;
  int gap; // bytes between rows, which leave deeper components unaligned
  bool upwards, separate, sideBySide;
  int reliefStep; // 0: the style's own channel; below 0: mirrored rows
  limn_area area;
};
constexpr limn_area PART = {70, 40, 100, 200};
const Layout LAYOUTS[] = {
    {"in place", 3, 0, false, false, false, 0, {}},
    {"with alpha", 4, 0, false, false, false, 0, {}},
    {"many channels, gaps", 6, 11, false, false, false, 0, {}},
    {"upwards", 4, 5, true, false, false, 0, {}},
    {"another buffer", 3, 0, false, true, false, 0, {}},
    {"another buffer with alpha", 5, 2, true, true, false, 0, {}},
    {"side by side", 4, 0, false, true, true, 0, {}},
    {"relief plane", 3, 0, false, false, false, 1, {}},
    {"relief plane with steps", 4, 0, false, true, false, 3, {}},
    {"relief plane backwards", 3, 1, false, false, false, -2, {}},
    {"an area", 4, 3, false, false, false, 0, PART},
    {"an area, another buffer", 3, 3, false, true, false, 1, PART},
};

// The noise picture in some layout: every byte that is not of a pixel's first three is BESIDE.
class LaidOut {
public:
  LaidOut(const Layout& layout, limn_kind kind) : _layout(layout), _size(ComponentBytes(kind)) {
    const int rowBytes = WIDTH * layout.channels * _size + layout.gap;
    const ptrdiff_t stride = layout.sideBySide ? 2 * rowBytes : rowBytes;
    _source.assign(static_cast<size_t>(stride * HEIGHT), BESIDE);
    if (layout.separate && !layout.sideBySide)
      _output.assign(_source.size(), 1);
    const ptrdiff_t first = layout.upwards ? stride * (HEIGHT - 1) : 0;
    picture = Packed(_source.data() + first, kind);
    picture.channels = layout.channels;
    picture.source_stride = picture.output_stride = layout.upwards ? -stride : stride;
    if (layout.separate)
      picture.output = layout.sideBySide ? _source.data() + rowBytes : _output.data() + first;
    picture.area = layout.area;
    Fill();
  }

  // What the caller sees as the lit picture, with the bytes beside checked.
  Bytes Result() const {
    Bytes out;
    const int pixelBytes = _layout.channels * _size;
    for (int i = 0; i < WIDTH * HEIGHT * pixelBytes; ++i) {
      const int x = i % (WIDTH * pixelBytes);
      const uint8_t byte = picture.output[i / (WIDTH * pixelBytes) * picture.output_stride + x];
      if (x % pixelBytes < 3 * _size)
        out.push_back(byte);
      else if (byte != BESIDE)
        ADD_FAILURE() << "byte " << i << " beside the colours is " << int{byte};
    }
    return out;
  }

  limn_picture picture;

private:
  void Fill() {
    const Bytes noise = Noise(WIDTH * HEIGHT * 3, picture.kind);
    const ptrdiff_t step = ptrdiff_t{_layout.reliefStep} * _size;
    const ptrdiff_t stride = WIDTH * std::abs(step) + 1;
    _relief.assign(static_cast<size_t>(HEIGHT * stride), 0);
    if (step != 0) {
      picture.relief = _relief.data() + (step < 0 ? (WIDTH - 1) * -step : 0);
      picture.relief_step = step;
      picture.relief_stride = stride;
      picture.relief_kind = picture.kind;
    }
    uint8_t* source = const_cast<uint8_t*>(picture.source);
    for (int i = 0; i < WIDTH * HEIGHT; ++i) {
      const int x = i % WIDTH;
      const int y = i / WIDTH;
      const uint8_t* const pixel = &noise[static_cast<size_t>(i) * 3 * _size];
      std::copy_n(pixel, 3 * _size,
                  source + y * picture.source_stride + x * _layout.channels * _size);
      if (step != 0)
        std::copy_n(pixel + _size, _size,
                    const_cast<uint8_t*>(picture.relief) + y * stride + x * step);
    }
  }

  Layout _layout;
  int _size; // of a component
  Bytes _source, _output, _relief;
};

TEST(Library, LightsEveryLayoutAlike) {
  for (const Layout& layout : LAYOUTS)
    for (const limn_kind kind : KINDS) {
      const Bytes expected = Plain(layout.area, kind);
      for (const int threads : {0, 1, 3, 1 << 30}) {
        LaidOut pixels(layout, kind);
        const limn_options options = {threads, nullptr, nullptr};
        limn_error error;
        EXPECT_EQ(limn_light(MakeSettings().get(), &pixels.picture, &options, &error), LIMN_OK)
            << layout.name << ": " << error.text;
        EXPECT_TRUE(pixels.Result() == expected)
            << layout.name << ", kind " << kind << ", " << threads << " threads";
      }
    }
}

// Bytes, words 257 times as large and floats from 0 to 1 are the same heights for every picture.
TEST(Library, TakesHeightsOfAnyKind) {
  const Bytes bytes = Noise(WIDTH * HEIGHT);
  std::vector<uint16_t> words;
  std::vector<float> floats;
  for (const uint8_t byte : bytes) {
    words.push_back(static_cast<uint16_t>(byte * 257));
    floats.push_back(static_cast<float>(byte) / 255.0F);
  }
  const void* const heights[] = {bytes.data(), words.data(), floats.data()};
  for (const limn_kind kind : KINDS) {
    Bytes expected;
    for (const limn_kind reliefKind : KINDS) {
      Bytes pixels = Noise(WIDTH * HEIGHT * 3, kind);
      limn_picture picture = Packed(pixels.data(), kind);
      picture.relief = static_cast<const uint8_t*>(heights[reliefKind]);
      picture.relief_kind = reliefKind;
      EXPECT_EQ(limn_light(MakeSettings().get(), &picture, nullptr, nullptr), LIMN_OK);
      EXPECT_TRUE(pixels != Plain({}, kind)) << "kind " << kind;
      if (reliefKind == LIMN_BYTES)
        expected = pixels;
      EXPECT_TRUE(pixels == expected) << "kind " << kind << ", relief of kind " << reliefKind;
    }
  }
}

// Frames that differ, under lights that stay, then under another surface, then under other lights.
TEST(Library, KeepsWhatLightGivesFromPictureToPicture) {
  limn_error error;
  for (const bool isFlat : {true, false}) {
    SCOPED_TRACE(isFlat ? "flat" : "in relief");
    const Settings settings = MakeSettings();
    if (isFlat)
      limn_settings_set(settings.get(), "bumpChannel", "0", nullptr);
    Bytes heights = Noise(WIDTH * HEIGHT);
    Bytes pixels(WIDTH * HEIGHT * 3);
    limn_picture picture = Packed(pixels.data());
    picture.relief = isFlat ? nullptr : heights.data();
    const Lighting lighting(limn_prepare(settings.get(), &picture, nullptr), limn_lighting_free);
    EXPECT_EQ(limn_set_keep(lighting.get(), static_cast<limn_keep>(3), &error), LIMN_BAD_ARGUMENT);
    EXPECT_EQ(limn_set_keep(lighting.get(), LIMN_KEEP_RELIEF, &error), LIMN_OK) << error.text;
    const uint64_t flat = limn_kept_bytes(lighting.get(), LIMN_KEEP_FLAT);
    EXPECT_GE(flat, 15U * WIDTH * HEIGHT);
    EXPECT_GE(limn_kept_bytes(lighting.get(), LIMN_KEEP_RELIEF), 60U * WIDTH * HEIGHT);
    for (int frame = 0; frame < 8; ++frame) {
      SCOPED_TRACE(frame);
      if (frame == 2)
        for (const char* key : {"gloss", "material", "exposure", "ambience"})
          limn_settings_set(settings.get(), key, "33", nullptr);
      if (frame == 4)
        limn_settings_set(settings.get(), "light.1.intensity", "-90", nullptr);
      if (frame == 5)
        for (const char* key : {"light.0.color", "light.1.color", "light.2.color"})
          limn_settings_set(settings.get(), key, "40000,40000,40000", nullptr);
      if (frame == 6) {
        heights[heights.size() / 2] ^= 255;
        limn_set_keep(lighting.get(), LIMN_KEEP_RELIEF, nullptr);
      }
      ASSERT_EQ(limn_set_settings(lighting.get(), settings.get(), &error), LIMN_OK) << error.text;
      EXPECT_EQ(limn_kept_bytes(lighting.get(), LIMN_KEEP_FLAT) < flat, frame >= 5)
          << "gray lights";
      for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint8_t>(i * 31 % 251 * static_cast<size_t>(frame));
      Bytes expected = pixels;
      limn_picture anew = picture;
      anew.source = anew.output = expected.data();
      ASSERT_EQ(limn_light(settings.get(), &anew, nullptr, nullptr), LIMN_OK);
      ASSERT_EQ(limn_run(lighting.get(), &picture, nullptr, &error), LIMN_OK) << error.text;
      EXPECT_TRUE(pixels == expected);
    }
  }
}

TEST(Library, RefusesWhatCannotBe) {
  const std::pair<const char*, std::function<void(limn_picture&)>> cases[] = {
      {"width: 0 ", [](limn_picture& p) { p.width = 0; }},
      {"height: -1 ", [](limn_picture& p) { p.height = -1; }},
      {"width: 32768 ", [](limn_picture& p) { p.width = 32768; }},
      {"channels: 2 ", [](limn_picture& p) { p.channels = 2; }},
      {"source: it is a null", [](limn_picture& p) { p.source = nullptr; }},
      {"output: it is a null", [](limn_picture& p) { p.output = nullptr; }},
      {"source: rows of 900 bytes overlap", [](limn_picture& p) { p.source_stride = 899; }},
      {"output: rows of 900 bytes overlap", [](limn_picture& p) { p.output_stride = -1; }},
      {"source: -", [](limn_picture& p) { p.source_stride = PTRDIFF_MIN; }},
      {"output: ", [](limn_picture& p) { p.output_stride = PTRDIFF_MAX / 2; }},
      {"output: ", [](limn_picture& p) { p.output_stride = PTRDIFF_MIN / 2 / 260; }},
      {"relief: ", [](limn_picture& p) { p.relief = p.source, p.relief_stride = PTRDIFF_MIN; }},
      {"relief: ", [](limn_picture& p) { p.relief = p.source, p.relief_step = PTRDIFF_MAX; }},
      {"kind: -1 is", [](limn_picture& p) { std::memset(&p.kind, 0xFF, sizeof p.kind); }},
      {"relief_kind: 3 is",
       [](limn_picture& p) {
         p.relief = p.source;
         p.relief_kind = static_cast<limn_kind>(3);
       }},
      {"source: rows of 1800 bytes overlap",
       [](limn_picture& p) { p.kind = LIMN_WORDS, p.source_stride = 1799; }},
      {"output: rows of 3600 bytes overlap",
       [](limn_picture& p) { p.kind = LIMN_FLOATS, p.output_stride = -900; }},
      {"relief: heights of 2 bytes overlap",
       [](limn_picture& p) {
         p.relief = p.source, p.relief_kind = LIMN_WORDS, p.relief_step = -1;
       }},
      {"relief: heights of 4 bytes overlap",
       [](limn_picture& p) {
         p.relief = p.source, p.relief_kind = LIMN_FLOATS, p.relief_stride = 3;
       }},
      {"shares bytes", [](limn_picture& p) { p.kind = LIMN_WORDS, p.source += 900 * 260; }},
      {"shares bytes", [](limn_picture& p) { p.output += 3; }},
      {"shares bytes", [](limn_picture& p) { p.source += 900 * 259; }},
      {"area.width: 0 ",
       [](limn_picture& p) {
         p.area = {1, 0, 0, 0};
       }},
      {"area.x: 300 ",
       [](limn_picture& p) {
         p.area = {300, 0, 1, 1};
       }},
      {"area.height: 2147483647 ",
       [](limn_picture& p) {
         p.area = {0, 9, 1, INT32_MAX};
       }},
      {"area.y: -",
       [](limn_picture& p) {
         p.area = {0, INT32_MIN, 1, 1};
       }},
  };
  const Bytes before = Noise(WIDTH * HEIGHT * 3);
  for (const auto& [text, change] : cases) {
    Bytes pixels = before;
    limn_picture picture = Packed(pixels.data());
    change(picture);
    limn_error error;
    EXPECT_EQ(limn_light(MakeSettings().get(), &picture, nullptr, &error), LIMN_BAD_ARGUMENT);
    EXPECT_EQ(error.code, LIMN_BAD_ARGUMENT);
    EXPECT_NE(std::string(error.text).find(text), std::string::npos) << text << ": " << error.text;
    EXPECT_TRUE(pixels == before) << text;
  }
  EXPECT_EQ(limn_light(nullptr, nullptr, nullptr, nullptr), LIMN_BAD_ARGUMENT);
  EXPECT_EQ(limn_run(nullptr, nullptr, nullptr, nullptr), LIMN_BAD_ARGUMENT);
  EXPECT_EQ(limn_settings_load(nullptr, nullptr), nullptr);
  EXPECT_EQ(limn_settings_copy(nullptr, nullptr), nullptr);
  EXPECT_EQ(limn_settings_json(nullptr, nullptr, 9), 0U);
  limn_settings_free(nullptr);
  limn_lighting_free(nullptr);
}

struct Progress {
  std::thread::id caller = std::this_thread::get_id();
  double last = -1;
  double stopAt = 2;
  bool throws = false;
  static int Told(double done, void* user) {
    Progress& self = *static_cast<Progress*>(user);
    EXPECT_EQ(std::this_thread::get_id(), self.caller);
    EXPECT_GE(done, self.last);
    EXPECT_LE(done, 1);
    self.last = done;
    if (self.throws && done > 0)
      throw std::runtime_error("not from C");
    return done >= self.stopAt ? 1 : 0;
  }
};

// What the plug-in makes of the block is compared in docs/host-contract.md.
TEST(Library, WritesParametersWholeOrNotAtAll) {
  const Settings settings = MakeSettings();
  limn_error error;
  Bytes pixel(3);
  limn_picture picture = Packed(pixel.data());
  const size_t size = limn_settings_parameters(settings.get(), &picture, nullptr, 0, &error);
  ASSERT_GT(size, 0U) << error.text;
  Bytes block(size + 1, BESIDE);
  EXPECT_EQ(limn_settings_parameters(settings.get(), &picture, block.data(), size - 1, nullptr),
            size);
  EXPECT_EQ(block, Bytes(size + 1, BESIDE));
  EXPECT_EQ(limn_settings_parameters(settings.get(), &picture, block.data(), size, nullptr), size);
  EXPECT_NE(block[0], BESIDE);
  EXPECT_EQ(block[size], BESIDE);
  picture.width = 0;
  EXPECT_EQ(limn_settings_parameters(settings.get(), &picture, nullptr, 0, &error), 0U);
  EXPECT_EQ(error.code, LIMN_BAD_ARGUMENT);
}

TEST(Library, TellsProgressAndStops) {
  struct Case {
    double stopAt;
    bool throws;
    limn_result result;
    bool touched;
  };
  const Bytes before = Noise(WIDTH * HEIGHT * 3);
  for (const Case& c : {Case{2, false, LIMN_OK, true}, Case{0, false, LIMN_CANCELLED, false},
                        Case{0.1, false, LIMN_CANCELLED, true}, Case{2, true, LIMN_FAILED, true}}) {
    Bytes pixels = before;
    limn_picture picture = Packed(pixels.data());
    Progress progress;
    progress.stopAt = c.stopAt;
    progress.throws = c.throws;
    const limn_options options = {1, Progress::Told, &progress};
    limn_error error;
    EXPECT_EQ(limn_light(MakeSettings().get(), &picture, &options, &error), c.result);
    EXPECT_EQ(pixels != before, c.touched);
    EXPECT_EQ(progress.last == 1, c.result == LIMN_OK);
  }
}

// Rounding and subnormals as some programs set them change nothing, and stay as they are.
TEST(Library, HasItsOwnFloatingPoint) {
  const Bytes expected = Plain();
  std::fesetround(FE_UPWARD);
  const Bytes upward = Plain();
  EXPECT_EQ(std::fegetround(), FE_UPWARD);
  std::fesetround(FE_TONEAREST);
  EXPECT_TRUE(upward == expected);
}

// One lighting is good for pictures of every kind.
TEST(Library, ServesSeveralThreadsAtOnce) {
  const Bytes expected[] = {Plain(), Plain({}, LIMN_WORDS), Plain({}, LIMN_FLOATS)};
  Settings settings = MakeSettings();
  const limn_picture format = Packed(nullptr);
  Lighting lighting(limn_prepare(settings.get(), &format, nullptr), limn_lighting_free);
  ASSERT_NE(lighting, nullptr);
  std::vector<std::thread> threads;
  std::atomic<int> same = 0;
  for (int i = 0; i < 6; ++i)
    threads.emplace_back([&, i] {
      const limn_kind kind = KINDS[i % 3];
      Bytes pixels = Noise(WIDTH * HEIGHT * 3, kind);
      const limn_picture picture = Packed(pixels.data(), kind);
      if (i % 2 == 0)
        limn_run(lighting.get(), &picture, nullptr, nullptr);
      else
        limn_light(settings.get(), &picture, nullptr, nullptr);
      same += pixels == expected[kind] ? 1 : 0;
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(same, 6);
  limn_picture other = format;
  other.width = WIDTH - 1;
  limn_error error;
  EXPECT_EQ(limn_run(lighting.get(), &other, nullptr, &error), LIMN_BAD_ARGUMENT);
}

} // namespace
