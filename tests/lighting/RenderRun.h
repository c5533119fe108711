// Lights scenes through the whole-image driver, from memory laid out in any way.
#pragma once

#include "LM_render.h"
#include "SceneGenerator.h"

#include <vector>

struct RenderLayout {
  const LM_kernels* kernels; // null: the plain rows
  int pixelStep;             // bytes from pixel to pixel of the picture
  int reliefStep;            // and of the relief plane
  bool strips;        // each call sees exactly the memory that it may read, and not a byte more
  bool keeps = false; // sums of light stay from call to call
  uint32_t keptLights = LM_ALL_LIGHTS;
};

// The kernels of this machine, and null for none.
std::vector<const LM_kernels*> AllKernels();
const char* NameOf(const LM_kernels* kernels);

// A scene of that size, lit by what the dialog can make, its area the whole image.
Scene SizedScene(uint64_t seed, int width, int height, bool relief);

class RenderRun {
public:
  // The scene must outlive the run.
  RenderRun(const Scene& scene, const foo& params, const RenderLayout& layout);
  // Lights one rectangle. Rectangles that do not overlap may be lit on several threads.
  void Light(const LM_rect& rect);
  // Whether what is kept goes on with the block's surface.
  bool ChangeSurface(const foo& params) { return LM_ChangeSurface(params, _job); }
  // Goes on with another block, of which the lights in kept sums are the same.
  void ChangeLights(const foo& params);
  // Rows of the area that vectors light; the others hold numbers that only the plain rows take.
  int VectorRows() const;
  // The picture, packed; fails the test when a byte beside the first three of a pixel was touched.
  std::vector<uint8_t> Picture() const;

private:
  const Scene& _scene;
  RenderLayout _layout;
  LM_render_job _job;
  LM_kept_sums _kept = {};
  std::vector<uint8_t> _out;
};
