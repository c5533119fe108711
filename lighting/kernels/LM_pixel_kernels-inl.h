// Bytes in and out: pixels to planes and back, and sums of light to bytes. Compiled once for each
// instruction set.
#if defined(LM_PIXEL_KERNELS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_PIXEL_KERNELS_INL_H
#undef LM_PIXEL_KERNELS_INL_H
#else
#define LM_PIXEL_KERNELS_INL_H
#endif

#include "LM_interleaved-inl.h"
#include "LM_kernels.h"
#include "LM_vector_math-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

using PixelTag = hn::CappedTag<uint8_t, 16>;

// With four bytes a pixel the last one is left to the plain loop: its fourth byte may not be there.
void SplitPlanes(const uint8_t* pixels, ptrdiff_t step, int n, const LM_kernel_planes& planes) {
  const PixelTag tag;
  const int lanes = static_cast<int>(hn::Lanes(tag));
  hn::Vec<PixelTag> v0, v1, v2, v3;
  int i = 0;
  for (; step == 3 && i + lanes <= n; i += lanes) {
    LoadThree(tag, pixels + ptrdiff_t{i} * 3, v0, v1, v2);
    hn::StoreU(v0, tag, planes.plane[0] + i);
    hn::StoreU(v1, tag, planes.plane[1] + i);
    hn::StoreU(v2, tag, planes.plane[2] + i);
  }
  for (; step == 4 && i + lanes < n; i += lanes) {
    hn::LoadInterleaved4(tag, pixels + ptrdiff_t{i} * 4, v0, v1, v2, v3);
    hn::StoreU(v0, tag, planes.plane[0] + i);
    hn::StoreU(v1, tag, planes.plane[1] + i);
    hn::StoreU(v2, tag, planes.plane[2] + i);
  }
  for (; i < n; ++i) {
    for (int plane = 0; plane < LM_PLANES; ++plane)
      planes.plane[plane][i] = pixels[i * step + plane];
  }
}

void JoinPlanes(const LM_kernel_planes& planes, int n, uint8_t* pixels, ptrdiff_t step) {
  const PixelTag tag;
  const int lanes = static_cast<int>(hn::Lanes(tag));
  const auto plane = [&](int which, int i) { return hn::LoadU(tag, planes.plane[which] + i); };
  int i = 0;
  for (; step == 3 && i + lanes <= n; i += lanes)
    StoreThree(plane(0, i), plane(1, i), plane(2, i), tag, pixels + ptrdiff_t{i} * 3);
  for (; step == 4 && i + lanes < n; i += lanes) {
    uint8_t* out = pixels + ptrdiff_t{i} * 4;
    hn::Vec<PixelTag> v0, v1, v2, beside;
    hn::LoadInterleaved4(tag, out, v0, v1, v2, beside);
    hn::StoreInterleaved4(plane(0, i), plane(1, i), plane(2, i), beside, tag, out);
  }
  for (; i < n; ++i) {
    for (int which = 0; which < LM_PLANES; ++which)
      pixels[i * step + which] = planes.plane[which][i];
  }
}

// One value for each plane. Members and not an array, so that they stay in registers.
struct PlaneInts {
  Ints p0, p1, p2;
};
HWY_INLINE PlaneInts SetPlanes(const int32_t* values) {
  return {SetInt(values[0]), SetInt(values[1]), SetInt(values[2])};
}
HWY_INLINE PlaneInts LoadPlanes(const LM_kernel_planes& planes, int i) {
  const ByteTag bytes;
  const IntTag ints;
  return {hn::PromoteTo(ints, hn::LoadU(bytes, planes.plane[0] + i)),
          hn::PromoteTo(ints, hn::LoadU(bytes, planes.plane[1] + i)),
          hn::PromoteTo(ints, hn::LoadU(bytes, planes.plane[2] + i))};
}
// The values are bytes already.
HWY_INLINE void StorePlanes(const PlaneInts& values, const LM_kernel_planes& planes, int i) {
  const ByteTag bytes;
  hn::StoreU(hn::DemoteTo(bytes, values.p0), bytes, planes.plane[0] + i);
  hn::StoreU(hn::DemoteTo(bytes, values.p1), bytes, planes.plane[1] + i);
  hn::StoreU(hn::DemoteTo(bytes, values.p2), bytes, planes.plane[2] + i);
}

HWY_INLINE Ints StrongPart(const LM_kernel_light& light, int plane, Floats factor) {
  return TruncateAny(hn::Mul(SetFloat(light.color[plane]), factor));
}

// Adds colour times `factor`, each product truncated. Most lights are white: one product does then.
HWY_INLINE void AddColor(PlaneInts& sums, const LM_kernel_light& light, Floats factor) {
  if (HWY_UNLIKELY(light.strong)) {
    sums = {hn::Add(sums.p0, StrongPart(light, 0, factor)),
            hn::Add(sums.p1, StrongPart(light, 1, factor)),
            hn::Add(sums.p2, StrongPart(light, 2, factor))};
    return;
  }
  const Ints part = TruncateProduct(hn::Mul(SetFloat(light.color[0]), factor));
  const bool gray = light.gray;
  sums.p0 = hn::Add(sums.p0, part);
  sums.p1 =
      hn::Add(sums.p1, gray ? part : TruncateProduct(hn::Mul(SetFloat(light.color[1]), factor)));
  sums.p2 =
      hn::Add(sums.p2, gray ? part : TruncateProduct(hn::Mul(SetFloat(light.color[2]), factor)));
}

// The same of the only plane that white lights need, none of them strong.
HWY_INLINE void AddColor(Ints& sum, const LM_kernel_light& light, Floats factor) {
  sum = hn::Add(sum, TruncateProduct(hn::Mul(SetFloat(light.color[0]), factor)));
}

// Adds the same, and PRODUCT_BIAS to each sum, for lights that are not strong: to three planes, or
// to one where they are alike.
HWY_INLINE void AddBiased(Ints& sum, const LM_kernel_light& light, Floats factor) {
  sum = hn::Add(sum, TruncateBiased(hn::Mul(SetFloat(light.color[0]), factor)));
}
HWY_INLINE void AddBiased(PlaneInts& sums, const LM_kernel_light& light, Floats factor) {
  sums = {hn::Add(sums.p0, TruncateBiased(hn::Mul(SetFloat(light.color[0]), factor))),
          hn::Add(sums.p1, TruncateBiased(hn::Mul(SetFloat(light.color[1]), factor))),
          hn::Add(sums.p2, TruncateBiased(hn::Mul(SetFloat(light.color[2]), factor)))};
}
HWY_INLINE PlaneInts AddToAll(const PlaneInts& sums, Ints part) {
  return {hn::Add(sums.p0, part), hn::Add(sums.p1, part), hn::Add(sums.p2, part)};
}

struct LightSums {
  PlaneInts diffuse, specular;
};
// Of white or gray lights, whose planes are alike.
struct WhiteSums {
  Ints diffuse, specular;
};

// The forms of material: light and highlight with the surface's byte, before exposure.
struct WhiteHighlights {
  explicit WhiteHighlights(const LM_kernel_surface& surface) : gloss(SetInt(surface.gloss * 255)) {}
  HWY_INLINE Ints operator()(Ints light, Ints highlight, Ints source) const {
    return hn::Add(hn::Mul(light, source), hn::Mul(highlight, gloss));
  }
  Ints gloss;
};
struct ColoredHighlights {
  explicit ColoredHighlights(const LM_kernel_surface& surface) : gloss(SetInt(surface.gloss)) {}
  HWY_INLINE Ints operator()(Ints light, Ints highlight, Ints source) const {
    return hn::Mul(hn::Add(light, hn::Mul(highlight, gloss)), source);
  }
  Ints gloss;
};
struct BlendedHighlights {
  explicit BlendedHighlights(const LM_kernel_surface& surface)
      : gloss(SetInt(surface.gloss)), material(SetInt(surface.material)),
        white(SetInt((256 - surface.material) * 255)) {}
  HWY_INLINE Ints operator()(Ints light, Ints highlight, Ints source) const {
    const Ints color = hn::ShiftRight<8>(hn::Add(hn::Mul(source, material), white));
    return hn::Add(hn::Mul(light, source), hn::Mul(hn::Mul(highlight, gloss), color));
  }
  Ints gloss, material, white;
};

// The exposure of what light and surface make, after 8 bits are cut: any, or a power of two of at
// most 256, such as the middle of the slider. No product of that wraps, and one shift does.
struct AnyExposure {
  explicit AnyExposure(int32_t exposure) : factor(SetInt(exposure)) {}
  HWY_INLINE Ints operator()(Ints combined) const {
    return hn::ShiftRight<15>(hn::Mul(hn::ShiftRight<8>(combined), factor));
  }
  Ints factor;
};
struct ShiftExposure {
  static bool Takes(int32_t exposure) {
    return exposure > 0 && exposure <= 256 && (exposure & (exposure - 1)) == 0;
  }
  explicit ShiftExposure(int32_t exposure) : bits(8 + 15) {
    for (; exposure > 1; exposure /= 2)
      --bits;
  }
  HWY_INLINE Ints operator()(Ints combined) const { return hn::ShiftRightSame(combined, bits); }
  int bits;
};

// Sums of light to bytes. Everything wraps at 32 bits before the last step.
template <class Form, class Exposure> class Combiner {
public:
  explicit Combiner(const LM_kernel_surface& surface) : _form(surface), _expose(surface.exposure) {}
  HWY_INLINE PlaneInts operator()(const LightSums& sums, const PlaneInts& source) const {
    return {Plane(sums.diffuse.p0, hn::ShiftRight<8>(sums.specular.p0), source.p0),
            Plane(sums.diffuse.p1, hn::ShiftRight<8>(sums.specular.p1), source.p1),
            Plane(sums.diffuse.p2, hn::ShiftRight<8>(sums.specular.p2), source.p2)};
  }
  HWY_INLINE Ints Plane(Ints light, Ints highlight, Ints source) const {
    return hn::Min(hn::Max(Exposed(light, highlight, source), hn::Zero(IntTag())), SetInt(255));
  }
  // Before it is cut to a byte.
  HWY_INLINE Ints Exposed(Ints light, Ints highlight, Ints source) const {
    return _expose(_form(light, highlight, source));
  }

private:
  Form _form;
  Exposure _expose;
};

template <class Exposure, class Light>
HWY_INLINE void WithMaterial(const LM_kernel_surface& surface, Light light) {
  if (surface.material < 1)
    light(Combiner<WhiteHighlights, Exposure>(surface));
  else if (surface.material > 255)
    light(Combiner<ColoredHighlights, Exposure>(surface));
  else
    light(Combiner<BlendedHighlights, Exposure>(surface));
}

// Calls light(combiner) with the combiner of the surface's material and exposure.
template <class Light> HWY_INLINE void WithCombiner(const LM_kernel_surface& surface, Light light) {
#if !HWY_ARCH_WASM // where everybody loads the module
  if (ShiftExposure::Takes(surface.exposure))
    return WithMaterial<ShiftExposure>(surface, light);
#endif
  WithMaterial<AnyExposure>(surface, light);
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
