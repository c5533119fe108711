// Documents and plug-in files that cannot be, and pixel maps that cannot be drawn.
#include "Plan.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

TEST(Document, ImpossibleShapesAreRefused) {
  const struct {
    int width, height, planes;
    bool fits;
  } cases[] = {{1, 1, 3, true},      {32767, 1, 3, true}, {32768, 1, 3, false},
               {1, 32768, 3, false}, {0, 1, 3, false},    {1, -1, 3, false},
               {1, 1, 2, false},     {1, 1, 1000, true},  {1, 1, 1001, false}};
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message()
                 << test.width << " x " << test.height << ", planes " << test.planes);
    CVDocument document;
    const CVResult result = document.create(test.width, test.height, test.planes);
    EXPECT_EQ(result.outcome, test.fits ? CVOutcome::Done : CVOutcome::BadImage);
    EXPECT_EQ(result.message.empty(), test.fits);
    EXPECT_EQ(document.width(), test.fits ? test.width : 0);
  }

  // Where pointers have 32 bits this is more than can be addressed; elsewhere a system may grant
  // it.
  if (sizeof(void*) == 4) {
    CVDocument huge;
    EXPECT_EQ(huge.create(32767, 32767, 1000).outcome, CVOutcome::NoMemory);
    EXPECT_EQ(huge.channelCount(), 0);
  }
}

TEST(Document, WrappedMemoryMustHoldTheImage) {
  std::vector<uint8_t> bytes(300);
  CVDocument document;
  EXPECT_FALSE(document.wrapChannel("Alone", bytes.data(), 10).ok());
  EXPECT_FALSE(document.wrapMask(bytes.data(), 10).ok());
  EXPECT_FALSE(document.wrap(bytes.data(), 29, 10, 10, 3).ok());
  EXPECT_FALSE(document.wrap(nullptr, 30, 10, 10, 3).ok());
  EXPECT_FALSE(document.wrap(bytes.data(), SIZE_MAX / 4, 10, 10, 3).ok());
  ASSERT_TRUE(document.wrap(bytes.data(), 30, 10, 10, 3).ok());
  EXPECT_FALSE(document.wrapChannel("Short", bytes.data(), 9).ok());
  EXPECT_FALSE(document.wrapMask(bytes.data(), 9).ok());
  EXPECT_FALSE(document.hasMask());
  EXPECT_EQ(document.channelCount(), 3);
  EXPECT_TRUE(document.wrapChannel("Height", bytes.data(), 10).ok());
  EXPECT_EQ(document.channelName(3), "Height");
}

TEST(Document, OthersCannotBeFiltered) {
  Plan plan;
  CVFilterSession session(playing(plan));
  std::mt19937 random(7);
  TestDocument document = randomDocument(random, 20, 10, 3, 0, false);
  for (const CVRect area : {CVRect{-1, 0, 5, 5}, CVRect{0, -1, 5, 5}, CVRect{0, 0, 11, 5},
                            CVRect{0, 0, 5, 21}, CVRect{5, 5, 5, 9}, CVRect{5, 5, 9, 4}})
    EXPECT_EQ(session.run(document, area, {}).outcome, CVOutcome::BadImage);
  CVDocument none;
  EXPECT_EQ(session.run(none, {0, 0, 1, 1}, {}).outcome, CVOutcome::BadImage);
  EXPECT_TRUE(plan.calls.empty());
  EXPECT_EQ(CVFilterSession(CVPlugin()).run(document, document.bounds(), {}).outcome,
            CVOutcome::BadPlugin);
}

TEST(Plugin, FilesThatAreNoneAreNamed) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::path(testing::TempDir()) / "corvaline-plugins";
  fs::create_directories(folder);
  std::ofstream(folder / "text.so") << "not a module\n";
  std::ofstream(folder / "empty.so").flush();
  const struct {
    std::string path, sentence;
  } cases[] = {{(folder / "missing.so").string(), "No such file"},
               {folder.string(), "is not a file"},
               {(folder / "text.so").string(), "cannot be loaded as a module"},
               {(folder / "empty.so").string(), "cannot be loaded as a module"},
               {"", "No such file"},
               {"libc.so.6", "No such file"}, // the system's folders are not searched
               {LIBRARY_WITHOUT_MAIN, "no entry point"}};
  Plan plan;
  CVPlugin plugin = playing(plan);
  for (const auto& test : cases) {
    const CVResult result = plugin.load(test.path);
    EXPECT_EQ(result.outcome, CVOutcome::BadPlugin) << test.path;
    EXPECT_EQ(result.message.rfind(test.path + ": ", 0), 0u) << result.message;
    EXPECT_NE(result.message.find(test.sentence), std::string::npos) << result.message;
  }
  EXPECT_TRUE(plugin.isLoaded());
  EXPECT_EQ(plugin.name(), "corvaline_test_module.so");
  fs::remove_all(folder);
}

TEST(Services, PixelMapsAreChecked) {
  std::vector<uint8_t> pixels(4 * 16), mask(4 * 8);
  CVPixelMask selection{nullptr, mask.data(), 8, 1, 0};
  CVPixelMap good{};
  good.bounds = {0, 0, 4, 5};
  good.imageMode = CV_MODE_RGB;
  good.rowBytes = 16;
  good.columnBytes = 3;
  good.planeBytes = 1;
  good.baseAddress = pixels.data();
  const CVRect32 all{0, 0, 4, 5};
  const struct {
    const char* name;
    std::function<void(CVPixelMap&, CVRect32&)> change;
    bool drawn;
  } cases[] = {
      {"as it is", [](auto&, auto&) {}, true},
      {"part",
       [](auto&, auto& source) {
         source = {1, 1, 2, 2};
       },
       true},
      {"with a mask",
       [&](auto& map, auto&) {
         map.version = 1;
         map.mask = &selection;
       },
       true},
      {"mask missing", [](auto& map, auto&) { map.version = 1; }, false},
      {"no pixels", [](auto& map, auto&) { map.baseAddress = nullptr; }, false},
      {"rows too short", [](auto& map, auto&) { map.rowBytes = 14; }, false},
      {"no columns", [](auto& map, auto&) { map.columnBytes = 0; }, false},
      {"source outside", [](auto&, auto& source) { source.right = 6; }, false},
      {"bounds inverted", [](auto& map, auto&) { map.bounds.bottom = -1; }, false},
      {"bounds of any size",
       [](auto& map, auto& source) {
         map.bounds = source = {0, INT32_MIN, 1, INT32_MAX};
       },
       false},
  };
  for (const auto& test : cases) {
    CVPixelMap map = good;
    CVRect32 source = all;
    test.change(map, source);
    EXPECT_EQ(CVCheckPixelMap(&map, &source, 0, 0, nullptr) == 0, test.drawn) << test.name;
  }
  EXPECT_NE(CVCheckPixelMap(nullptr, &all, 0, 0, nullptr), 0);
  EXPECT_NE(CVCheckPixelMap(&good, nullptr, 0, 0, nullptr), 0);
}
