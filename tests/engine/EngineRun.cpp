#include "EngineRun.h"

#include "LM_preview.h"
#include "LM_shader.h"
#include "LM_tiles.h"
#include "MacMemory.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

namespace {

constexpr int16_t HEIGHT_CHANNEL = 4; // after red, green and blue
constexpr int ROW_PADDING = 5;        // strides are seldom the row's length

EngineRun* currentRun = nullptr;

uint8_t NeverCancel() {
  return 0;
}

int16_t DeliverNow() {
  currentRun->Deliver();
  return 0;
}

bool IsEmpty(const CVRect& r) {
  return r.bottom <= r.top || r.right <= r.left;
}

} // namespace

LM_light_UI ToEngine(const ReferenceLight& light) {
  LM_light_UI out{};
  out.type = light.type;
  out.center = {light.center.h, light.center.v};
  out.handle1 = {light.handle1.h, light.handle1.v};
  out.handle2 = {light.handle2.h, light.handle2.v};
  out.radius = light.radius;
  std::copy(light.color.begin(), light.color.end(), out.color.component);
  out.intensity = light.intensity;
  out.spread = light.spread;
  out.on = light.on ? 1 : 0;
  return out;
}

EngineRun::EngineRun(const Scene& shown)
    : globals(LM_NewGlobals()), out(shown.pixels), scene(shown) {
  currentRun = this;
  const ReferenceSettings& settings = scene.settings;
  std::copy(settings.ambientColor.begin(), settings.ambientColor.end(),
            globals->ambientColor.component);
  globals->material = settings.material;
  globals->gloss = settings.gloss;
  globals->exposure = settings.exposure;
  globals->ambientBrightness = settings.ambience;
  globals->bumpAmplitude = settings.bumpAmplitude;
  globals->whiteIsHigh = settings.whiteIsHigh ? 1 : 0;
  globals->bumpChannel = scene.heights.empty() ? int16_t{0} : HEIGHT_CHANNEL;
  globals->previewWidth = scene.geometry.previewWidth;
  globals->frameCenterX = scene.geometry.frameCenterX;
  globals->frameOriginX = scene.geometry.frameOriginX;
  globals->numLights = static_cast<uint16_t>(settings.lights.size());
  for (size_t i = 0; i < settings.lights.size(); ++i) {
    globals->lights[i] = ToEngine(settings.lights[i]);
    globals->lights[i].globals = globals.get();
  }
  globals->record = &record;
  LM_SetUpHeightFilter(&globals->bumpMap);

  record.testCancel = NeverCancel;
  record.nextTile = DeliverNow;
  record.absolutePlanesSupported = 1;
  record.colorMode = CV_MODE_RGB;
  record.hostSignature = CV_HOST_SIGNATURE;
  record.inSampleStep = CV_FIXED_ONE;
  record.inLastPlane = 2;
  record.outLastPlane = 2;
  record.inEdgeMode = CV_EDGE_NONE;
  const ReferenceArea& area = scene.area;
  record.filterArea = {static_cast<int16_t>(area.top), static_cast<int16_t>(area.left),
                       static_cast<int16_t>(area.bottom), static_cast<int16_t>(area.right)};
  record.savedParams = LM_NewParameters();
}

EngineRun::~EngineRun() {
  LM_FreeRunBuffers(globals.get());
  DisposeHandle(record.savedParams);
  currentRun = nullptr;
}

foo* EngineRun::Convert(LM_bool preview) {
  foo* params = LM_Parameters(&record);
  globals->ConvertToParameters(params, preview);
  return params;
}

void EngineRun::Deliver() {
  const CVRect& wanted = record.inTileRect;
  const int rows = wanted.bottom - wanted.top;
  const int columns = wanted.right - wanted.left;
  const int planes = record.inLastPlane - record.inFirstPlane + 1;
  ASSERT_GT(rows, 0);
  ASSERT_GT(columns, 0);
  if (record.inEdgeMode != CV_EDGE_REPLICATE) {
    ASSERT_TRUE(wanted.top >= 0 && wanted.left >= 0 && wanted.bottom <= scene.height &&
                wanted.right <= scene.width);
  }
  const int stride = columns * planes + ROW_PADDING;
  input =
      std::vector<uint8_t>(static_cast<size_t>(rows) * static_cast<size_t>(stride) - ROW_PADDING);
  for (int row = 0; row < rows; ++row) {
    const int y = std::clamp(wanted.top + row, 0, scene.height - 1);
    for (int column = 0; column < columns; ++column) {
      const int x = std::clamp(wanted.left + column, 0, scene.width - 1);
      const auto pixel =
          static_cast<size_t>(y) * static_cast<size_t>(scene.width) + static_cast<size_t>(x);
      for (int p = 0; p < planes; ++p) {
        const int plane = record.inFirstPlane + p;
        input[static_cast<size_t>(row) * static_cast<size_t>(stride) +
              static_cast<size_t>(column) * static_cast<size_t>(planes) + static_cast<size_t>(p)] =
            plane < 3 ? scene.pixels[pixel * 3 + static_cast<size_t>(plane)] : scene.heights[pixel];
      }
    }
  }
  record.inPixels = input.data();
  record.inRowStride = stride;
  mask.clear();
  for (int y = record.maskTileRect.top; y < record.maskTileRect.bottom; ++y)
    for (int x = record.maskTileRect.left; x < record.maskTileRect.right; ++x)
      mask.push_back(MaskAt(x, y));
  record.maskPixels = mask.data();
  record.maskRowStride = record.maskTileRect.right - record.maskTileRect.left;
  record.outRowStride = scene.width * 3;
  record.outPixels =
      out.data() + record.outTileRect.top * record.outRowStride + record.outTileRect.left * 3;
}

std::vector<uint8_t> EngineRun::RenderTiles() {
  const foo* params = Convert(0);
  LM_SetFirstRealTileRects(&record, globals.get());
  for (int32_t left = LM_NumTilesNeeded(&record); left > 0 && !IsEmpty(record.inTileRect); --left) {
    if (params->bumpChannel != 0) {
      globals->bumpMap.scale = params->bumpHeight;
      LM_RealToBumpRects(&record, globals.get());
      Deliver();
      EXPECT_EQ(LM_StoreBumpMap(&record, globals.get()), 0);
      LM_BumpToRealRects(&record, globals.get());
      Deliver();
      LM_ShadeTileWithBumps(&record, &globals->bumpMap, globals.get());
    } else {
      Deliver();
      LM_ShadeTile(&record, globals.get());
    }
    LM_SetNextRealTileRects(&record, globals.get());
  }
  EXPECT_TRUE(IsEmpty(record.inTileRect));
  return out;
}

bool EngineRun::CollectPreview(int frameSize) {
  const auto size = static_cast<int16_t>(frameSize);
  // A frame of 12 pixels all round, somewhere in the dialog.
  const Rect frame = {20, 10, static_cast<int16_t>(size + 44), static_cast<int16_t>(size + 34)};
  Rect preview = {0, 0, size, size};
  if (LM_SetUpPreview(&record, globals.get(), frame, &preview) != 0)
    return false;
  globals->previewComplete = 0;
  LM_SetFirstPreviewTileRects(&record, globals.get());
  while (globals->previewComplete == 0) {
    Deliver();
    LM_CalcTilePreview(&record, globals.get());
    LM_SetNextPreviewTileRects(&record, globals.get());
  }
  return globals->bumpChannel == 0 || LM_GetPreviewBumpPixelMap(globals.get()) == 0;
}

std::vector<uint8_t> EngineRun::RenderPreview() {
  EXPECT_EQ(LM_ShadePreview(globals.get()), 0);
  const auto rowBytes = static_cast<size_t>(globals->previewWidth) * 3;
  std::vector<uint8_t> picture(rowBytes * static_cast<size_t>(globals->previewHeight));
  for (int row = 0; row < globals->previewHeight; ++row) {
    const uint8_t* source = FramePixel(globals->previewOffsetY + row, globals->previewOffsetX);
    std::memcpy(picture.data() + static_cast<size_t>(row) * rowBytes, source, rowBytes);
  }
  return picture;
}

const uint8_t* EngineRun::FramePixel(int row, int column) const {
  const CVPixelMap& frame = globals->previewMaps[LM_FRAME_MAP];
  return frame.baseAddress + row * frame.rowBytes + column * 3;
}

std::vector<uint8_t> EngineRun::ReferencePreview() const {
  const ReferenceGeometry geometry{globals->previewWidth, globals->frameCenterX,
                                   globals->frameOriginX};
  return ReferenceRenderPreview(scene.settings, geometry, scene.Image(), scene.Heights(),
                                scene.area, globals->previewScale);
}

uint8_t MaskAt(int x, int y) {
  return static_cast<uint8_t>(x * 31 + y * 7 + 1);
}

void ExpectSamePicture(const std::vector<uint8_t>& expected, const std::vector<uint8_t>& actual,
                       int width) {
  ASSERT_EQ(expected.size(), actual.size());
  const auto difference = std::mismatch(expected.begin(), expected.end(), actual.begin());
  if (difference.first == expected.end())
    return;
  const auto at = static_cast<int>(difference.first - expected.begin());
  ADD_FAILURE() << "pixel (" << at / 3 % width << ", " << at / 3 / width << ") plane " << at % 3
                << ": expected " << int{*difference.first} << ", got " << int{*difference.second};
}
