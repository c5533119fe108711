// Rows of pixels of more than 8 bits. Compiled once for each instruction set.
#if defined(LM_DEEP_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_DEEP_KERNEL_INL_H
#undef LM_DEEP_KERNEL_INL_H
#else
#define LM_DEEP_KERNEL_INL_H
#endif

#include "LM_relief_kernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

struct PlaneFloats {
  Floats p0, p1, p2;
};
struct DeepSums {
  PlaneFloats diffuse, specular;
};

HWY_INLINE Floats DeepPart(const LM_kernel_light& light, int plane, Floats factor) {
  const Floats part = hn::Mul(SetFloat(light.color[plane]), factor);
  return HWY_UNLIKELY(light.strong) ? hn::IfThenElseZero(hn::Eq(part, part), part) : part;
}
HWY_INLINE void AddColor(PlaneFloats& sums, const LM_kernel_light& light, Floats factor) {
  if (HWY_LIKELY(light.gray)) {
    const Floats part = DeepPart(light, 0, factor);
    sums = {hn::Add(sums.p0, part), hn::Add(sums.p1, part), hn::Add(sums.p2, part)};
    return;
  }
  sums.p0 = hn::Add(sums.p0, DeepPart(light, 0, factor));
  sums.p1 = hn::Add(sums.p1, DeepPart(light, 1, factor));
  sums.p2 = hn::Add(sums.p2, DeepPart(light, 2, factor));
}

HWY_INLINE DeepSums NoDeepLight() {
  const Floats none = hn::Zero(FloatTag());
  return {{none, none, none}, {none, none, none}};
}

// As LookAtLights, but in the order of the block: sums of floats depend on it.
HWY_INLINE void LookAtLightsInOrder(const LM_kernel_lights& lights, const float* places,
                                    SampleLights* at) {
  const FloatTag tag;
  const FourFloats four = {hn::LoadU(tag, places), hn::LoadU(tag, places + Lanes()),
                           hn::LoadU(tag, places + 2 * Lanes()),
                           hn::LoadU(tag, places + 3 * Lanes())};
  for (int v = 0; v < 4; ++v)
    at[v].count = 0;
  for (int i = 0; i < lights.Count(); ++i) {
    const int k = lights.ordered[i];
    const LM_kernel_light& light = lights.light[k];
    if (k >= lights.omnis + lights.spots) {
      for (int v = 0; v < 4; ++v)
        AddPlainLight(light, SetFloat(light.x), SetFloat(light.inverse), at[v]);
      continue;
    }
    const FourWays ways = WaysTo(light, four);
    if (k < lights.omnis)
      AddPlainLights(light, ways, at);
    else
      AddSpotsInReach<true>(light, ways, at);
  }
}

HWY_INLINE bool IsSpot(const LM_kernel_lights& lights, const LM_kernel_light* light) {
  const auto k = static_cast<int>(light - lights.light);
  return k >= lights.omnis && k < lights.omnis + lights.spots;
}

HWY_INLINE DeepSums SumDeepFlat(const LM_kernel_lights& lights, const SampleLights& at) {
  DeepSums sums = NoDeepLight();
  for (int k = 0; k < at.count; ++k) {
    if (IsSpot(lights, at.light[k]))
      AddFlatSpot(sums, *at.light[k], at.inverse[k], at.falloff[k]);
    else
      AddFlatOmni(sums, *at.light[k], at.inverse[k]);
  }
  return sums;
}

HWY_NOINLINE void FindSharesInOrder(const LM_kernel_lights& lights, const SampleLights& at,
                                    const LM_normal_row* normals, int i, FacetShares& shares) {
  const FourFacets facets = FacetsAt(normals, i);
  for (int k = 0; k < at.count; ++k) {
    if (IsSpot(lights, at.light[k]))
      FindShares<true>(at, k, facets, shares);
    else
      FindShares<false>(at, k, facets, shares);
  }
}

// The forms of material, as LM_deep_pixels.h has them.
struct DeepWhite {
  explicit DeepWhite(const LM_kernel_surface&) {}
  HWY_INLINE Floats operator()(Floats light, Floats shine, Floats source) const {
    return hn::Add(hn::Mul(light, source), hn::Mul(shine, SetFloat(255.0F)));
  }
};
struct DeepColored {
  explicit DeepColored(const LM_kernel_surface&) {}
  HWY_INLINE Floats operator()(Floats light, Floats shine, Floats source) const {
    return hn::Mul(hn::Add(light, shine), source);
  }
};
struct DeepBlend {
  explicit DeepBlend(const LM_kernel_surface& surface)
      : material(SetFloat(static_cast<float>(surface.material))),
        white(SetFloat(static_cast<float>((256 - surface.material) * 255))) {}
  HWY_INLINE Floats operator()(Floats light, Floats shine, Floats source) const {
    const Floats color = hn::Mul(hn::Add(hn::Mul(source, material), white), SetFloat(0x1p-8F));
    return hn::Add(hn::Mul(light, source), hn::Mul(shine, color));
  }
  Floats material, white;
};

template <class Form> class DeepCombiner {
public:
  DeepCombiner(const LM_kernel_surface& surface, const int32_t* ambient)
      : _form(surface), _gloss(SetFloat(static_cast<float>(surface.gloss))),
        _exposure(SetFloat(static_cast<float>(surface.exposure))),
        _ambient{SetFloat(static_cast<float>(ambient[0])), SetFloat(static_cast<float>(ambient[1])),
                 SetFloat(static_cast<float>(ambient[2]))} {}
  HWY_INLINE PlaneFloats operator()(const DeepSums& sums, const PlaneFloats& source) const {
    return {_Plane(_ambient.p0, sums.diffuse.p0, sums.specular.p0, source.p0),
            _Plane(_ambient.p1, sums.diffuse.p1, sums.specular.p1, source.p1),
            _Plane(_ambient.p2, sums.diffuse.p2, sums.specular.p2, source.p2)};
  }

private:
  HWY_INLINE Floats _Plane(Floats ambient, Floats diffuse, Floats specular, Floats source) const {
    const Floats shine = hn::Mul(hn::Mul(specular, SetFloat(0x1p-8F)), _gloss);
    const Floats sum = _form(hn::Add(ambient, diffuse), shine, source);
    return hn::Mul(hn::Mul(sum, _exposure), SetFloat(0x1p-23F));
  }
  Form _form;
  Floats _gloss, _exposure;
  PlaneFloats _ambient;
};

HWY_INLINE PlaneFloats LoadDeepPlanes(const LM_deep_planes& planes, int i) {
  const FloatTag tag;
  return {hn::LoadU(tag, planes.plane[0] + i), hn::LoadU(tag, planes.plane[1] + i),
          hn::LoadU(tag, planes.plane[2] + i)};
}
HWY_INLINE void StoreDeepPlanes(const PlaneFloats& values, const LM_deep_planes& planes, int i) {
  const FloatTag tag;
  hn::StoreU(values.p0, tag, planes.plane[0] + i);
  hn::StoreU(values.p1, tag, planes.plane[1] + i);
  hn::StoreU(values.p2, tag, planes.plane[2] + i);
}

HWY_INLINE Floats MeanOfFour(Floats a, Floats b, Floats c, Floats d) {
  return hn::Mul(hn::Add(hn::Add(a, b), hn::Add(c, d)), SetFloat(0.25F));
}

// normals: null for a flat surface.
template <class Combine>
HWY_INLINE void DeepRow(const LM_kernel_lights& lights, const Combine& combine, const float* x,
                        int n, const LM_normal_row* normals, const LM_deep_planes& planes) {
  SampleLights fourAt[4];
  for (int i = 0; i < n; i += Lanes()) {
    const int v = i / Lanes() % 4;
    if (v == 0)
      LookAtLightsInOrder(lights, x + i, fourAt);
    const SampleLights& at = fourAt[v];
    const PlaneFloats source = LoadDeepPlanes(planes, i);
    if (normals == nullptr) {
      StoreDeepPlanes(combine(SumDeepFlat(lights, at), source), planes, i);
      continue;
    }
    FacetShares shares;
    FindSharesInOrder(lights, at, normals, i, shares);
    const auto facet = [&](int corner) HWY_ATTR {
      return combine(LightFacet(NoDeepLight(), at, shares, corner), source);
    };
    const PlaneFloats a = facet(0);
    const PlaneFloats b = facet(1);
    const PlaneFloats c = facet(2);
    const PlaneFloats d = facet(3);
    StoreDeepPlanes({MeanOfFour(a.p0, b.p0, c.p0, d.p0), MeanOfFour(a.p1, b.p1, c.p1, d.p1),
                     MeanOfFour(a.p2, b.p2, c.p2, d.p2)},
                    planes, i);
  }
}

void LightDeep(const LM_kernel_lights& lights, const LM_kernel_surface& surface, const float* x,
               int n, const LM_normal_row* normals, const LM_deep_planes& planes) {
  if (surface.material < 1)
    DeepRow(lights, DeepCombiner<DeepWhite>(surface, lights.diffuse), x, n, normals, planes);
  else if (surface.material > 255)
    DeepRow(lights, DeepCombiner<DeepColored>(surface, lights.diffuse), x, n, normals, planes);
  else
    DeepRow(lights, DeepCombiner<DeepBlend>(surface, lights.diffuse), x, n, normals, planes);
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
