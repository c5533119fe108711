// Every value of a light was computed from a few small integers. An estimate of these, by the
// formulas turned round, is off by one at most; what makes the very same light is then searched
// around it.
#include "LM_style_of_parameters.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <numbers>

#include "LM_constants.h"
#include "LM_light_kinds.h"
#include "LM_style_fields.h"
#include "LM_style_lighting.h"

namespace {

constexpr double UNIT = LM_FRAME_SIZE / 2.0;
constexpr int AMBIENT_SCALE = 64;
constexpr int MOST = INT16_MAX;
constexpr int FULL = 65535;

template <class Plain> bool SameBits(const Plain& one, const Plain& other) {
  // Two zeros may shade differently, and any NaN shades as itself.
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
  return std::memcmp(&one, &other, sizeof one) == 0;
}

bool SameLight(const LM_light& one, const LM_light& other) {
  if (one.type != other.type || !SameBits(one.color, other.color))
    return false;
  switch (one.type) {
  case LM_LIGHT_OMNI:
    return SameBits(one.position, other.position);
  case LM_LIGHT_DIRECTIONAL:
    return SameBits(one.direction, other.direction);
  case LM_LIGHT_SPOT:
    return SameBits(one.position, other.position) && SameBits(one.direction, other.direction) &&
           SameBits(one.cosCutoff, other.cosCutoff) &&
           SameBits(one.spreadTable, other.spreadTable) &&
           SameBits(one.spreadScale, other.spreadScale) &&
           SameBits(one.spreadMinCos, other.spreadMinCos);
  default:
    return true;
  }
}

bool FitsShort(double value) {
  return value >= INT16_MIN && value <= MOST;
}

// The nearest vector in whole pixels; false when it has too long a side, or is none.
bool Rounded(double x, double y, LM_vector2f& vector) {
  if (!FitsShort(std::round(x)) || !FitsShort(std::round(y)))
    return false;
  vector = {static_cast<float>(std::round(x)), static_cast<float>(std::round(y))};
  return true;
}

// Finds brightness and colour with color * brightness / scale = product for each plane, the
// brightness as near to 0 as can be: the colour is then as bright as can be, as colours mostly are.
bool SplitColor(const int32_t (&product)[LM_PLANES], int scale, LM_color48& color,
                int16_t& brightness) {
  const bool isNegative = *std::min_element(product, product + LM_PLANES) < 0;
  if (isNegative && *std::max_element(product, product + LM_PLANES) > 0)
    return false;
  for (int64_t tried = 0; tried <= MOST; ++tried) {
    bool isFound = true;
    for (int plane = 0; plane < LM_PLANES && isFound; ++plane) {
      const int64_t wanted = std::llabs(product[plane]);
      const int64_t above = wanted * scale + scale - 1;
      const int64_t found = tried == 0 ? FULL : std::min<int64_t>(FULL, above / tried);
      isFound = found * tried / scale == wanted;
      color.component[plane] = static_cast<uint16_t>(found);
    }
    brightness = static_cast<int16_t>(isNegative ? -tried : tried);
    if (isFound)
      return true;
  }
  return false;
}

// Calls found(vector) for the vectors around a place, the nearest first, until it answers true.
template <class Found> bool SearchAround(double x, double y, int reach, Found found) {
  for (int distance = 0; distance <= reach; ++distance)
    for (int v = -distance; v <= distance; ++v)
      for (int h = -distance; h <= distance; ++h) {
        LM_vector2f vector;
        if (std::max(std::abs(h), std::abs(v)) == distance &&
            Rounded(std::round(x) + h, std::round(y) + v, vector) && found(vector))
          return true;
      }
  return false;
}

// A light under construction, beside the one that it has to become.
class LightFinder {
public:
  explicit LightFinder(const LM_light& wanted)
      : _wanted(wanted), _found(LM_NewStyleLight()), _made() {
    _found.type = LM_LightKindOfType(wanted.type).code;
  }

  bool Find() {
    if (!SplitColor(_wanted.color.component, LM_LIGHT_INTENSITY_SCALE, _found.color,
                    _found.intensity))
      return false;
    const bool hasPlace = _wanted.type == LM_LIGHT_OMNI          ? _FindBulb()
                          : _wanted.type == LM_LIGHT_DIRECTIONAL ? _FindDirection()
                          : _wanted.type == LM_LIGHT_SPOT        ? _FindSpot() && _FindSpread()
                                                                 : false;
    _Make(0);
    return hasPlace && SameLight(_made, _wanted);
  }

  const LM_style_light& Found() const { return _found; }

private:
  void _Make(LM_bool forPreview) {
    LM_ConvertLight(LM_FigureOf(_found), static_cast<float>(UNIT), forPreview, &_made);
  }

  bool _FindBulb() {
    const double radius =
        std::round(static_cast<double>(_wanted.position.z) * UNIT / static_cast<double>(LM_TAN_30));
    if (!FitsShort(radius))
      return false;
    _found.radius = static_cast<float>(radius);
    return Rounded(_wanted.position.x * UNIT, _wanted.position.y * UNIT, _found.center);
  }

  bool _FindDirection() {
    const double x = static_cast<double>(_wanted.direction.x);
    const double y = static_cast<double>(_wanted.direction.y);
    const double sine = std::hypot(x, y);
    const double slope = sine / static_cast<double>(_wanted.direction.z);
    // It stands 100 pixels less its handle's length high, at least one.
    const double length = slope < 99.0 ? 100.0 * slope / (1.0 + slope) : slope;
    const double perSine = sine > 0.0 ? length / sine : 0.0;
    return SearchAround(x * perSine, y * perSine, 3, [&](const LM_vector2f& handle) {
      _found.handle1 = handle;
      _Make(1);
      return SameBits(_made.direction, _wanted.direction);
    });
  }

  // Finds the handles that point this way and reach this far, and the centre.
  bool _FindSpot() {
    const double fall = std::asin(std::clamp(-static_cast<double>(_wanted.direction.z), -1.0, 1.0));
    const double tilt = 2.0 * fall - std::numbers::pi / 2.0;
    const double length = static_cast<double>(_wanted.position.z) * UNIT / std::sin(tilt);
    const double x = static_cast<double>(_wanted.direction.x);
    const double y = static_cast<double>(_wanted.direction.y);
    const double across = std::hypot(x, y);
    if (!(std::abs(length) <= 2.0 * MOST))
      return false;
    // For a circle the way across is a rounding error, which may point backwards.
    for (const double sense : {-1.0, 1.0}) {
      const double perAcross = across > 0.0 ? sense * length / across : 0.0;
      const double sine = std::numbers::sqrt2 * std::sin(fall);
      const double second = std::sqrt(std::max(0.0, sine * sine - 1.0)) * length;
      if (SearchAround(x * perAcross, y * perAcross, 1, [&](const LM_vector2f& handle) {
            _found.handle1 = handle;
            return _FindSecondHandle(second);
          }))
        return true;
    }
    return false;
  }

  // Perpendicular to the first, as the dialog keeps it, or, in a style from elsewhere, any of that
  // length.
  bool _FindSecondHandle(double length) {
    const auto h = static_cast<double>(_found.handle1.x);
    const auto v = static_cast<double>(_found.handle1.y);
    const double share = length / std::max(1.0, std::hypot(h, v));
    const auto matches = [&](const LM_vector2f& handle) {
      _found.handle2 = handle;
      return _MatchesPlace();
    };
    if (SearchAround(-v * share, h * share, 2, matches))
      return true;
    const auto longest = static_cast<int>(std::min<double>(length + 1.0, MOST));
    for (int side = 0; side <= longest; ++side) {
      const double other = std::sqrt(std::max(0.0, length * length - double{1} * side * side));
      LM_vector2f handle;
      if (Rounded(side, other, handle) && matches(handle))
        return true;
    }
    return false;
  }

  bool _MatchesPlace() {
    _found.center = {0, 0};
    _Make(1);
    if (!SameBits(_made.direction, _wanted.direction) ||
        !SameBits(_made.position.z, _wanted.position.z) ||
        !Rounded((static_cast<double>(_wanted.position.x) - _made.position.x) * UNIT,
                 (static_cast<double>(_wanted.position.y) - _made.position.y) * UNIT,
                 _found.center))
      return false;
    _Make(1);
    return SameBits(_made.position, _wanted.position);
  }

  bool _FindSpread() {
    for (int spread = -256; spread <= 1024; ++spread) {
      // Those of the slider first.
      _found.spread = static_cast<int16_t>(spread < 0     ? spread + 256
                                           : spread < 256 ? spread - 256
                                                          : spread);
      _Make(0);
      if (SameBits(_made.spreadTable, _wanted.spreadTable))
        return true;
    }
    return false;
  }

  const LM_light& _wanted;
  LM_style_light _found;
  LM_light _made;
};

} // namespace

bool LM_SameShading(const foo& params, const foo& other) {
  if (params.gloss != other.gloss || params.material != other.material ||
      params.exposure != other.exposure || !SameBits(params.ambient, other.ambient) ||
      !SameBits(params.worldScale, other.worldScale) ||
      LM_LightCount(&params) != LM_LightCount(&other) || params.bumpChannel != other.bumpChannel ||
      (params.bumpChannel != 0 && params.bumpHeight != other.bumpHeight))
    return false;
  for (int i = 0; i < LM_LightCount(&params); ++i)
    if (!SameLight(params.lights[i], other.lights[i]))
      return false;
  return true;
}

bool LM_StyleOfParameters(const foo& params, int areaWidth, int areaHeight, LM_style& style) {
  style = LM_NewStyle();
  style.gloss = params.gloss;
  style.material = params.material;
  style.exposure = params.exposure;
  style.bumpChannel = params.bumpChannel;
  if (params.bumpChannel != 0) {
    style.whiteIsHigh = params.bumpHeight >= 0 ? 1 : 0;
    style.bumpAmplitude = static_cast<int16_t>(std::min(std::abs(params.bumpHeight / 2), MOST));
  }
  if (!SplitColor(params.ambient.component, AMBIENT_SCALE, style.ambientColor,
                  style.ambientBrightness))
    return false;
  // A style has a light at least.
  style.lights[0] = LM_NewStyleLight();
  style.lights[0].on = 0;
  for (int i = 0; i < LM_LightCount(&params); ++i) {
    LightFinder finder(params.lights[i]);
    if (!finder.Find())
      return false;
    style.lights[i] = finder.Found();
  }
  style.lightsRead = static_cast<uint16_t>(std::max(1, LM_LightCount(&params)));
  style.numLights = style.lightsRead;
  const std::unique_ptr<foo> again(new (std::nothrow) foo);
  return again != nullptr &&
         LM_ParametersFromStyle(style, areaWidth, areaHeight, INT16_MAX, again.get()) &&
         LM_SameShading(params, *again);
}
