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

std::vector<uint8_t> randomPlane(std::mt19937& random, int rows, int rowStride) {
  std::vector<uint8_t> bytes(static_cast<size_t>(rows) * static_cast<size_t>(rowStride));
  for (uint8_t& byte : bytes)
    byte = static_cast<uint8_t>(random());
  return bytes;
}

TestDocument randomDocument(std::mt19937& random, int width, int height, int planes, int extras,
                            bool masked) {
  TestDocument document;
  EXPECT_TRUE(document.create(width, height, planes).ok());
  const std::vector<uint8_t> base = randomPlane(random, height, width * planes);
  std::copy(base.begin(), base.end(), document.channel(0).data);
  for (int i = 0; i < extras + (masked ? 1 : 0); ++i) {
    uint8_t* plane = document.planes.emplace_back(randomPlane(random, height, width)).data();
    EXPECT_TRUE((i < extras ? document.wrapChannel("Extra", plane, static_cast<size_t>(width))
                            : document.wrapMask(plane, static_cast<size_t>(width)))
                    .ok());
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
