// How far the C library's functions may be off before a light is converted to other numbers.
//
// Everything that a light's conversion takes from the C library is rounded to float. For each value
// the exact result is computed to 64 bits or more, and then how many units in the last place of a
// double one would have to go from it to reach another float.
#include "LM_handles.h"
#include "LM_light_figure.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

uint32_t stride = 1; // 1: every value

constexpr float PIXELS_PER_UNIT = 140;
constexpr int FARTHEST_HANDLE = 3000;
constexpr int DIALOG_HANDLE = 400; // beyond what the dialog's picture has room for
constexpr float QUARTER_PI = 0.7853981852531433F;
constexpr double PI = static_cast<double>(3.1415927410125732F);
constexpr float HALF_PI = 1.5707963705062866F;
// docs/reliability.md names it. C libraries in use keep within one unit.
constexpr double PROMISED = 1.9;

double UnitInLastPlace(double value) {
  return std::bit_cast<double>(std::bit_cast<uint64_t>(value) & 0x7FF0000000000000U) * 0x1p-52;
}

// The nearest that one of the conversion's roundings comes to another result.
class Margin {
public:
  explicit Margin(const char* name) : _name(name) {}
  ~Margin() {
    std::printf("counted: %s: %llu roundings, the nearest %.2f units away, %d exact ties\n", _name,
                static_cast<unsigned long long>(_count), _nearest, _ties);
    EXPECT_GE(_nearest, PROMISED) << _name;
    EXPECT_EQ(_wrong, 0U) << _name << ": this C library is off";
  }
  Margin(const Margin&) = delete;
  Margin& operator=(const Margin&) = delete;

  // exact: the function's value. found: what this C library makes of it. round: what the conversion
  // makes of a double in its place, which is returned for the exact one.
  template <class Round> float Add(long double exact, double found, Round round) {
    const double value = static_cast<double>(exact);
    const float rounded = round(value);
    ++_count;
    const float here = round(found);
    _wrong += here == rounded || (here != here && rounded != rounded) ? 0 : 1;
    if (std::fabs(value) >= DBL_MIN && std::fabs(value) <= DBL_MAX)
      _Search(exact, value, rounded, round);
    return rounded;
  }

private:
  template <class Round> void _Search(long double exact, double value, float rounded, Round round) {
    constexpr double FAR = 4096;
    const double unit = UnitInLastPlace(value);
    for (const double way : {-unit, unit}) {
      if (round(value + FAR * way) == rounded)
        continue;
      double steps = 1;
      while (round(value + steps * way) == rounded)
        ++steps;
      const double distance = std::fabs(static_cast<double>((value + steps * way - exact) / unit));
      // Functions whose value is a double give that double.
      if (exact == static_cast<long double>(value) && steps == 1)
        ++_ties;
      else
        _nearest = std::min(_nearest, distance);
    }
  }

  const char* _name;
  uint64_t _count = 0, _wrong = 0;
  double _nearest = INFINITY;
  int _ties = 0;
};

float ToFloat(double value) {
  return static_cast<float>(value);
}
long double Wide(float value) {
  return static_cast<long double>(value);
}

class Digest {
public:
  void Add(float value) {
    const uint32_t bits = value != value ? 0x7FC00000U : std::bit_cast<uint32_t>(value);
    _value = (_value ^ bits) * 0x100000001B3U;
  }
  // Of every value; another C library may give another one only if it is off by more than PROMISED.
  void Expect(uint64_t value) const {
    if (stride == 1) {
      EXPECT_EQ(_value, value) << "this C library gives other floats";
    }
  }

private:
  uint64_t _value = 0xCBF29CE484222325U;
};

// Calls act(x) with the floats from `first`, above 0, to `last`.
template <class Act> void ForFloats(float first, float last, Act act) {
  for (uint32_t bits = std::bit_cast<uint32_t>(first); bits <= std::bit_cast<uint32_t>(last);
       bits += stride)
    act(std::bit_cast<float>(bits));
}

} // namespace

// The falloff of every spread there is, in both sizes of table; and the tables are the
// conversion's.
TEST(LibmMargin, Falloff) {
  Margin powers("powers"), angles("arc cosines"), shapes("powers of angles"), falloffs("falloffs");
  Digest digest;
  static LM_light light;
  for (const bool preview : {false, true}) {
    const int entries = preview ? LM_PREVIEW_SPREAD_ENTRIES : LM_SPREAD_ENTRIES;
    const double root = std::sqrt(2.0);
    const float step = static_cast<float>((2.0 - root) / (2.0 * (entries - 1)));
    float angle[LM_SPREAD_ENTRIES];
    for (int i = 0; i < entries; ++i) {
      const float cosine =
          static_cast<float>(root / 2.0 + static_cast<double>(step * static_cast<float>(i)));
      angle[i] = angles.Add(std::acos(Wide(cosine)), std::acos(static_cast<double>(cosine)),
                            [](double value) { return static_cast<float>(2.0 * value) / HALF_PI; });
    }
    for (int spread = INT16_MIN; spread <= INT16_MAX; spread += static_cast<int>(stride)) {
      LM_BuildSpreadTable(static_cast<int16_t>(spread), preview ? 1 : 0, &light);
      const float focus = static_cast<float>(spread);
      const float base = ((focus - 128.0F) * 0.75F + 128.0F) / 128.0F;
      const float exponent = focus / 64.0F + 1.0F;
      const float power =
          powers.Add(std::pow(Wide(base), Wide(exponent)),
                     std::pow(static_cast<double>(base), static_cast<double>(exponent)), ToFloat);
      for (int i = 0; i < entries; ++i) {
        const float shaped = shapes.Add(
            std::pow(Wide(angle[i]), Wide(power)),
            std::pow(static_cast<double>(angle[i]), static_cast<double>(power)), ToFloat);
        const float turned = shaped * HALF_PI;
        const float falloff =
            falloffs.Add(std::cos(Wide(turned)), std::cos(static_cast<double>(turned)), ToFloat);
        const float converted = light.spreadTable[i];
        ASSERT_TRUE(converted == falloff || (converted != converted && falloff != falloff))
            << "spread " << spread << ", entry " << i;
        digest.Add(falloff);
      }
    }
  }
  digest.Expect(0x8839F3593730411DU);
}

// Where a spot points: the compass of every handle, the tilt of every footprint, and sine and
// cosine of all angles that these can be. A sine or cosine of a negative angle is that of its
// opposite.
TEST(LibmMargin, Directions) {
  Margin compasses("compass"), tilts("tilt"), sines("sines"), cosines("cosines");
  Digest digest;
  for (int v = 1; v <= FARTHEST_HANDLE; v += static_cast<int>(stride)) {
    for (int h = 1; h <= FARTHEST_HANDLE; ++h) {
      const double slope = static_cast<double>(static_cast<float>(v) / PIXELS_PER_UNIT) /
                           static_cast<double>(static_cast<float>(h) / PIXELS_PER_UNIT);
      const long double exact = std::atan(static_cast<long double>(slope));
      const double found = std::atan(slope);
      digest.Add(compasses.Add(exact, found, ToFloat));
      digest.Add(compasses.Add(exact, found, [](double a) { return ToFloat(PI - a); }));
    }
  }
  // A second handle adds to the first, so the sine is not below the root of a half.
  ForFloats(0.70710F, 1.0F, [&](float sine) {
    digest.Add(tilts.Add(std::asin(Wide(sine)), std::asin(static_cast<double>(sine)), [](double a) {
      return static_cast<float>(2.0 * (a - static_cast<double>(QUARTER_PI)));
    }));
  });
  ForFloats(1.0F / FARTHEST_HANDLE, static_cast<float>(PI), [&](float angle) {
    digest.Add(sines.Add(std::sin(Wide(angle)), std::sin(static_cast<double>(angle)), ToFloat));
    digest.Add(cosines.Add(std::cos(Wide(angle)), std::cos(static_cast<double>(angle)), ToFloat));
  });
  digest.Expect(0xA4D4A00F473A0F11U);
}

// Where a spot stands: the length of its first handle times sine and cosine of the tilt, for every
// pair of handles that the dialog can leave.
TEST(LibmMargin, Positions) {
  Margin places("positions");
  Digest digest;
  for (int h = 0; h <= DIALOG_HANDLE; h += static_cast<int>(stride)) {
    for (int v = 0; v <= h; ++v) {
      const float x = static_cast<float>(h) / PIXELS_PER_UNIT;
      const float y = static_cast<float>(v) / PIXELS_PER_UNIT;
      const float length = static_cast<float>(std::sqrt(static_cast<double>(x * x + y * y)));
      LM_vector2f last = {-1, -1};
      for (int turned = 0; turned <= h; ++turned) {
        const LM_vector2f second = LM_QuarterTurn(
            {static_cast<float>(h), static_cast<float>(v)},
            static_cast<float>(turned) / static_cast<float>(h), LM_handle_grid::Whole);
        if (h == 0 || (second.x == last.x && second.y == last.y))
          continue;
        last = second;
        const float u = second.x / PIXELS_PER_UNIT;
        const float w = second.y / PIXELS_PER_UNIT;
        const float squares = x * x + y * y + u * u + w * w;
        const float sine =
            std::min(1.0F, static_cast<float>((std::sqrt(2.0) / 2.0) *
                                              (std::sqrt(static_cast<double>(squares)) /
                                               static_cast<double>(length))));
        const float tilt = static_cast<float>(
            2.0 * (std::asin(static_cast<double>(sine)) - static_cast<double>(QUARTER_PI)));
        const auto place = [&](double value) {
          return static_cast<float>(static_cast<double>(length) * value);
        };
        digest.Add(places.Add(std::cos(Wide(tilt)), std::cos(static_cast<double>(tilt)), place));
        digest.Add(places.Add(std::sin(Wide(tilt)), std::sin(static_cast<double>(tilt)), place));
      }
    }
  }
  digest.Expect(0x81EE9DE127BADEE5U);
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  stride = argc > 1 ? static_cast<uint32_t>(std::atoi(argv[1])) : 1;
  if (LDBL_MANT_DIG < 64) {
    std::puts("there is no wider type than double here");
    return 0;
  }
  return RUN_ALL_TESTS();
}
