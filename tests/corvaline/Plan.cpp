#include "Plan.h"

#include <algorithm>
#include <dlfcn.h>
#include <gtest/gtest.h>

static Plan* current = nullptr;

static int act(int selector, void* record, intptr_t* data, int16_t* result) {
  Plan& plan = *current;
  plan.calls.push_back(selector);
  plan.slot = data;
  if (selector == LM_SEL_ABOUT) {
    if (plan.about)
      *result = plan.about(*static_cast<CVAboutRecord*>(record));
    return 0;
  }
  plan.record = static_cast<FilterRecord*>(record);
  const auto& step = selector == LM_SEL_PARAMETERS ? plan.parameters
                     : selector == LM_SEL_PREPARE  ? plan.prepare
                     : selector == LM_SEL_START    ? plan.start
                     : selector == LM_SEL_CONTINUE ? plan.next
                                                   : plan.finish;
  if (step)
    *result = step(*plan.record);
  return 0;
}

CVPlugin playing(Plan& plan) {
  current = &plan;
  CVPlugin plugin;
  const CVResult result = plugin.load(TEST_MODULE);
  EXPECT_TRUE(result.ok()) << result.message;
  void* module = dlopen(TEST_MODULE, RTLD_NOW | RTLD_LOCAL); // the same module once more
  auto* script = static_cast<CVFilterEntry*>(dlsym(module, "testScript"));
  *script = act;
  dlclose(module);
  return plugin;
}

void stopAsking(FilterRecord& record) {
  record.inTileRect = record.outTileRect = record.maskTileRect = {0, 0, 0, 0};
}

static void fill(std::mt19937& random, const CVChannelView<uint8_t>& view, int width, int height) {
  for (int row = 0; row < height; ++row)
    for (int column = 0; column < width; ++column)
      view.data[static_cast<size_t>(row) * view.rowStride +
                static_cast<size_t>(column) * view.pixelStep] = static_cast<uint8_t>(random());
}

CVDocument randomDocument(std::mt19937& random, int width, int height, int planes, int extras,
                          bool masked) {
  CVDocument document;
  EXPECT_TRUE(document.create(width, height, CV_MODE_RGB, planes).ok());
  for (int i = 0; i < extras; ++i)
    EXPECT_TRUE(document.addChannel("Extra").ok());
  for (int i = 0; i < document.channelCount(); ++i)
    fill(random, document.channel(i), width, height);
  if (masked) {
    EXPECT_TRUE(document.createMask(0).ok());
    fill(random, document.mask(), width, height);
  }
  return document;
}

std::vector<uint8_t> bytesOf(const CVDocument& document) {
  std::vector<uint8_t> bytes;
  for (int channel = 0; channel < document.channelCount(); ++channel)
    for (int row = 0; row < document.height(); ++row)
      for (int column = 0; column < document.width(); ++column)
        bytes.push_back(pixelAt(document, channel, row, column));
  return bytes;
}

uint8_t pixelAt(const CVDocument& document, int channel, int row, int column) {
  const auto view = document.channel(channel);
  const auto y = static_cast<size_t>(std::clamp(row, 0, document.height() - 1));
  const auto x = static_cast<size_t>(std::clamp(column, 0, document.width() - 1));
  return view.data[y * view.rowStride + x * view.pixelStep];
}
