#include "RenderRun.h"

#include "LM_light_sums.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr uint8_t BESIDE = 0xA7; // what lies beside the planes

size_t Unsigned(int value) {
  return static_cast<size_t>(value);
}

// `inner` bytes of each pixel of `rect`, cut out of an image and laid out `step` apart, without a
// byte after the last pixel.
std::vector<uint8_t> CutOut(const std::vector<uint8_t>& image, int width, int inner, int step,
                            const LM_rect& rect) {
  const int columns = rect.right - rect.left;
  const int rows = rect.bottom - rect.top;
  std::vector<uint8_t> out(Unsigned(columns) * Unsigned(rows) * Unsigned(step), BESIDE);
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x)
      std::copy_n(
          image.data() + (Unsigned(rect.top + y) * Unsigned(width) + Unsigned(rect.left + x)) *
                             Unsigned(inner),
          inner, out.data() + (Unsigned(y) * Unsigned(columns) + Unsigned(x)) * Unsigned(step));
  }
  out.resize(out.size() - Unsigned(step - inner));
  out.shrink_to_fit();
  return out;
}

} // namespace

std::vector<const LM_kernels*> AllKernels() {
  std::vector<const LM_kernels*> all(16);
  all.resize(Unsigned(LM_ListKernels(all.data(), 16)));
  all.push_back(nullptr);
  return all;
}

const char* NameOf(const LM_kernels* kernels) {
  return kernels != nullptr ? kernels->name : "plain";
}

Scene SizedScene(uint64_t seed, int width, int height, bool relief) {
  SceneRandom random(seed);
  Scene scene;
  scene.width = width;
  scene.height = height;
  scene.area = {0, 0, height, width};
  scene.geometry.previewWidth = 256;
  scene.settings.exposure = 20;
  scene.settings.material = static_cast<int16_t>(random.OneOf({0, 120, 256}));
  for (int type = REFERENCE_OMNI; type <= REFERENCE_SPOT; ++type)
    scene.settings.lights.push_back(MakeLight(random, type, SceneMood::Usual));
  for (int i = 0; i < width * height; ++i) {
    for (int plane = 0; plane < 3; ++plane)
      scene.pixels.push_back(static_cast<uint8_t>(random.Between(100, 255)));
    if (relief)
      scene.heights.push_back(static_cast<uint8_t>(random.Between(0, i % 5 == 0 ? 40 : 12)));
  }
  scene.name =
      std::to_string(width) + " x " + std::to_string(height) + (relief ? " in relief" : " flat");
  return scene;
}

RenderRun::RenderRun(const Scene& scene, const foo& params, const RenderLayout& layout)
    : _scene(scene), _layout(layout) {
  const ReferenceArea& a = scene.area;
  EXPECT_EQ(LM_PrepareRender(params, {a.top, a.left, a.bottom, a.right}, scene.width, scene.height,
                             layout.kernels, _job),
            LM_render_result::Done);
  if (layout.keeps) {
    const bool relief = !scene.heights.empty();
    EXPECT_TRUE(LM_StartKeeping(_job.area, relief, layout.keptLights, _kept,
                                LM_TightForm(_job.params, _job.area, relief)));
  }
  _out = CutOut(scene.pixels, scene.width, 3, layout.pixelStep, {0, 0, scene.height, scene.width});
}

void RenderRun::ChangeLights(const foo& params) {
  EXPECT_EQ(LM_PrepareRender(params, _job.area, _scene.width, _scene.height, _layout.kernels, _job),
            LM_render_result::Done);
}

void RenderRun::Light(const LM_rect& rect) {
  const LM_rect all = {0, 0, _scene.height, _scene.width};
  LM_rect seen = all;
  LM_rect felt = all;
  if (_layout.strips) {
    seen = rect;
    felt = {std::max(rect.top - LM_RELIEF_REACH, 0), std::max(rect.left - LM_RELIEF_REACH, 0),
            std::min(rect.bottom + LM_RELIEF_REACH, _scene.height),
            std::min(rect.right + LM_RELIEF_REACH, _scene.width)};
  }
  const int step = _layout.pixelStep;
  const std::vector<uint8_t> source = CutOut(_scene.pixels, _scene.width, 3, step, seen);
  std::vector<uint8_t> heights;
  LM_source_view relief = {};
  if (!_scene.heights.empty()) {
    heights = CutOut(_scene.heights, _scene.width, 1, _layout.reliefStep, felt);
    relief = {heights.data(), ptrdiff_t{felt.right - felt.left} * _layout.reliefStep,
              _layout.reliefStep, felt};
  }
  const LM_render_views views = {
      {source.data(), ptrdiff_t{seen.right - seen.left} * step, step, seen},
      {_out.data(), ptrdiff_t{_scene.width} * step, step, all},
      relief,
      LM_pixel_kind::Bytes,
      LM_pixel_kind::Bytes,
      &_kept};
  const LM_render_scratch_pointer scratch = LM_NewRenderScratch();
  EXPECT_EQ(LM_RenderRect(_job, views, rect, *scratch), LM_render_result::Done);
}

int RenderRun::VectorRows() const {
  LM_kernel_lights lights =
      _scene.heights.empty() ? _job.flatLights.kernel : _job.reliefLights.kernel;
  if (_scene.heights.empty())
    lights.directionals = 0; // the same everywhere
  const LM_sample_grid grid(_job.area, &_job.params);
  int count = 0;
  for (int y = _job.area.top; y < _job.area.bottom; ++y) {
    const float place = grid.Y(y);
    count +=
        LM_FitVectors(lights, {grid.X(_job.area.left), grid.X(_job.area.right - 1), place, place});
  }
  return count;
}

std::vector<uint8_t> RenderRun::Picture() const {
  std::vector<uint8_t> picture;
  for (size_t i = 0; i < _out.size(); ++i) {
    if (i % Unsigned(_layout.pixelStep) < 3)
      picture.push_back(_out[i]);
    else
      EXPECT_EQ(_out[i], BESIDE) << "byte " << i;
  }
  return picture;
}
