#include "ScriptedHost.h"

#include "LM_parameters.h"
#include "LM_style_fields.h"
#include "LM_style_settings.h"
#include "MacMemory.h"

#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

ScriptedHost* host = nullptr;
int cancelTests = 0;

uint8_t TestCancel() {
  return host->cancelAfter >= 0 && ++cancelTests > host->cancelAfter ? 1 : 0;
}
void Progress(int32_t, int32_t) {
  ++host->progressReports;
}
int16_t ShowPixels(const CVPixelMap*, const CVRect32*, int32_t, int32_t, void*) {
  return 0;
}
int16_t NextTile() {
  host->Deliver();
  return host->nextTileResult;
}
int16_t QueryProperty(uint32_t, uint32_t key, int32_t, int32_t* value, CVHandle*) {
  if (key != CV_PROPERTY_NUM_CHANNELS)
    return CV_RESULT_NO_SERVICE;
  *value = host->channels;
  return CV_RESULT_OK;
}

CVFilterEntry LoadModule() {
  void* module = dlopen(LIMN_MODULE, RTLD_NOW | RTLD_LOCAL);
  EXPECT_NE(module, nullptr) << dlerror();
  return module != nullptr ? reinterpret_cast<CVFilterEntry>(dlsym(module, "main")) : nullptr;
}

bool IsEmpty(const CVRect& rect) {
  return rect.bottom <= rect.top || rect.right <= rect.left;
}

std::string Side(const CVRect& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "-" + std::to_string(r.right) +
         "," + std::to_string(r.bottom);
}

} // namespace

std::string Line(const FilterRecord& record) {
  return "in " + Side(record.inTileRect) + " planes " + std::to_string(record.inFirstPlane) + ".." +
         std::to_string(record.inLastPlane) +
         (record.absolutePlanesWanted != 0 ? " absolute" : "") +
         (record.inEdgeMode == CV_EDGE_REPLICATE ? " replicated" : "") + " out " +
         Side(record.outTileRect);
}

ScriptedHost::ScriptedHost(int16_t width, int16_t height, CVFilterEntry filter) : entry(filter) {
  static const CVFilterEntry module = LoadModule();
  if (entry == nullptr)
    entry = module;
  host = this;
  cancelTests = 0;
  image.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
  for (size_t i = 0; i < image.size(); ++i)
    image[i] = static_cast<uint8_t>(i * 2654435761U >> 24);
  out.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
  record.testCancel = TestCancel;
  record.reportProgress = Progress;
  record.filterArea = {0, 0, height, width};
  record.hostSignature = CV_HOST_SIGNATURE;
  record.colorMode = CV_MODE_RGB;
  record.showPixels = ShowPixels;
  record.nextTile = NextTile;
  record.absolutePlanesSupported = 1;
  record.queryProperty = QueryProperty;
  record.inSampleStep = CV_FIXED_ONE;
}

ScriptedHost::~ScriptedHost() {
  Call(LM_SEL_FINISH);
  // Unloading would do this: between runs the settings object is a single block.
  DisposePtr(reinterpret_cast<Ptr>(data));
  DisposeHandle(record.savedParams);
  host = nullptr;
}

int16_t ScriptedHost::Call(int selector) {
  int16_t result = 77;
  CVAboutRecord about = {};
  void* argument = selector == LM_SEL_ABOUT ? static_cast<void*>(&about) : &record;
  EXPECT_EQ(entry(selector, argument, &data, &result), 0);
  return result;
}

void ScriptedHost::KeepParameters(const LM_style& style) {
  if (record.savedParams == nullptr)
    record.savedParams = NewHandle(static_cast<Size>(sizeof(foo)));
  ASSERT_NE(record.savedParams, nullptr);
  const CVRect& area = record.filterArea;
  ASSERT_TRUE(LM_ParametersFromStyle(style, area.right - area.left, area.bottom - area.top, 4,
                                     reinterpret_cast<foo*>(*record.savedParams)));
}

void ScriptedHost::Deliver() {
  const CVRect& in = record.inTileRect;
  const CVRect& area = record.filterArea;
  const int planes = record.inLastPlane - record.inFirstPlane + 1;
  const int columns = in.right - in.left;
  _input.assign(static_cast<size_t>(std::max((in.bottom - in.top) * columns * planes, 0)), 0);
  uint8_t* next = _input.data();
  for (int y = in.top; y < in.bottom; ++y) {
    for (int x = in.left; x < in.right; ++x) {
      const int row = std::clamp<int>(y, 0, area.bottom - 1);
      const int column = std::clamp<int>(x, 0, area.right - 1);
      for (int plane = record.inFirstPlane; plane <= record.inLastPlane; ++plane)
        *next++ = image[static_cast<size_t>((row * area.right + column) * 4 + plane)];
    }
  }
  record.inPixels = _input.data();
  record.inRowStride = columns * planes;
  const CVRect& o = record.outTileRect;
  _output.assign(static_cast<size_t>(std::max((o.bottom - o.top) * (o.right - o.left) * 3, 0)), 0);
  record.outPixels = _output.data();
  record.outRowStride = (o.right - o.left) * 3;
}

int16_t ScriptedHost::Walk() {
  while (!IsEmpty(record.inTileRect) || !IsEmpty(record.outTileRect)) {
    requests.push_back(Line(record));
    const CVRect o = record.outTileRect;
    Deliver();
    ++continues;
    const int16_t result = Call(LM_SEL_CONTINUE);
    if (result != CV_RESULT_OK)
      return result;
    for (int y = o.top; y < o.bottom && o.right > o.left; ++y)
      std::memcpy(&out[static_cast<size_t>((y * record.filterArea.right + o.left) * 3)],
                  &_output[static_cast<size_t>((y - o.top) * (o.right - o.left) * 3)],
                  static_cast<size_t>((o.right - o.left) * 3));
  }
  return CV_RESULT_OK;
}

int16_t ScriptedHost::Run() {
  int16_t result = Call(LM_SEL_PREPARE);
  if (result == CV_RESULT_OK)
    result = Call(LM_SEL_START);
  if (result == CV_RESULT_OK)
    result = Walk();
  const int16_t finished = Call(LM_SEL_FINISH);
  return result != CV_RESULT_OK ? result : finished;
}

LM_style OneLight(bool relief) {
  LM_style style = LM_NewStyle();
  std::string why;
  EXPECT_TRUE(LM_SetStyleField(style, "light.0.type", "omni", why)) << why;
  style.lights[0].radius = 90;
  style.bumpChannel = relief ? 4 : 0;
  return style;
}
