// A style file from a stranger, read and used to light a small picture, flat or in relief. Vectors
// and the plain rows have to agree.
#include "FuzzInput.h"

#include "LM_render.h"
#include "LM_style_codec.h"
#include "LM_style_lighting.h"
#include "MacMemory.h"

#include <cstring>
#include <string>

namespace {

constexpr int16_t WIDTH = 9, HEIGHT = 5; // more than a vector, and less than two
constexpr int PIXEL = 4;                 // red, green, blue, height

struct Picture {
  uint8_t bytes[WIDTH * HEIGHT * PIXEL];
};

const Picture& Source() {
  static const Picture source = [] {
    Picture made;
    uint32_t state = 1;
    for (uint8_t& byte : made.bytes)
      byte = static_cast<uint8_t>((state = state * 1664525 + 1013904223) >> 24);
    return made;
  }();
  return source;
}

Picture Light(const foo& params, const LM_kernels* kernels, LM_render_scratch& scratch) {
  static LM_render_job job;
  Picture lit = Source();
  constexpr LM_rect ALL = {0, 0, HEIGHT, WIDTH};
  const LM_source_view source = {Source().bytes, WIDTH * PIXEL, PIXEL, ALL};
  LM_source_view heights = {Source().bytes + 3, WIDTH * PIXEL, PIXEL, ALL};
  if (params.bumpChannel == 0)
    heights.pixels = nullptr;
  Check(LM_PrepareRender(params, {0, 0, HEIGHT, WIDTH}, WIDTH, HEIGHT, kernels, job) ==
                LM_render_result::Done &&
            LM_RenderRect(job, {source, {lit.bytes, WIDTH * PIXEL, PIXEL, ALL}, heights}, ALL,
                          scratch) == LM_render_result::Done,
        "a style that loads lights a picture");
  return lit;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const LM_render_scratch_pointer scratch = LM_NewRenderScratch();
  static foo params;
  TB_SetMemoryBudget(1 << 30); // asking the machine each time takes longer than all the rest
  LM_style style;
  std::string why;
  const bool loads = LM_DecodeStyle(data, size, style, why);
  Check(loads || !why.empty(), "what does not load has a reason");
  if (!loads)
    return 0;
  Check(LM_ParametersFromStyle(style, WIDTH, HEIGHT, 4, &params), "what loads can be used");
  static const LM_kernels* const vectors = LM_BestKernels();
  const Picture fast = Light(params, vectors, *scratch);
  const Picture plain = Light(params, nullptr, *scratch);
  Check(std::memcmp(&fast, &plain, sizeof fast) == 0, "vectors light as the plain rows do");
  return 0;
}
