#include "Pen.h"

namespace scenes {

namespace {

// Strokes of a letter on a grid 4 wide and 6 high, two digits (right, up) a point, a space between
// strokes; a stroke that begins with ~ is rounded.
struct Letter {
  char name;
  const char* strokes;
};

constexpr Letter LETTERS[] = {
    {'A', "002640 1333"},
    {'B', "0006 ~06464303 ~03434000"},
    {'C', "~454606004041"},
    {'D', "0006 ~06464000"},
    {'E', "46060040 0333"},
    {'F', "460600 0333"},
    {'G', "~454606004043 4323"},
    {'H', "0006 4046 0343"},
    {'I', "2026"},
    {'J', "~36300002"},
    {'K', "0006 4602 1340"},
    {'L', "060040"},
    {'M', "0006224640"},
    {'N', "00064046"},
    {'O', "~260600404626"},
    {'P', "0006 ~06464303"},
    {'Q', "~260600404626 2240"},
    {'R', "0006 ~06464303 2340"},
    {'S', "~4546060343400001"},
    {'T', "0646 2620"},
    {'U', "~060200404246"},
    {'V', "062046"},
    {'W', "0610243046"},
    {'X', "0046 0640"},
    {'Y', "0623 462320"},
    {'Z', "06460040"},
    {'0', "~260600404626"},
    {'1', "142620"},
    {'2', "~0506464400 0040"},
    {'3', "~0506464313 ~1343400001"},
    {'4', "30360242"},
    {'5', "460603 ~0343400001"},
    {'6', "~46060040430301"},
    {'7', "064610"},
    {'8', "~23030646432323 ~23030040432323"},
    {'9', "~004046060343"},
    {'.', "2020"},
    {',', "2110"},
    {'-', "1333"},
    {'+', "1333 2422"},
    {'=', "0242 0444"},
    {'/', "0046"},
    {':', "2121 2424"},
};

float Advance(char name) {
  switch (name) {
  case 'I':
  case '1':
  case '.':
  case ',':
  case ':':
    return 4.2F;
  case ' ':
    return 4.0F;
  default:
    return 5.8F;
  }
}

const char* StrokesOf(char name) {
  for (const Letter& letter : LETTERS) {
    if (letter.name == name) {
      return letter.strokes;
    }
  }
  return "";
}

float DistanceToSegment(Vec2 p, Vec2 a, Vec2 b) {
  const Vec2 way = b - a;
  const float t = Clamp01(Dot(p - a, way) / std::max(Dot(way, way), 1e-9F));
  return Length(p - a - way * t);
}

} // namespace

Sheet::Sheet(int width, int height, Vec3 paper) : _colours(width, height), _cover(width, height) {
  std::fill(_colours.values.begin(), _colours.values.end(), paper);
}

void Sheet::Draw(const Stroke& stroke, float width, Vec3 ink) {
  const float reach = 0.5F * width + 1;
  Vec2 low = stroke.front(), high = stroke.front();
  for (size_t i = 0; i + 1 < stroke.size(); ++i) {
    const Vec2 a = stroke[i], b = stroke[i + 1];
    const int left = std::max(0, static_cast<int>(std::min(a.x, b.x) - reach));
    const int right = std::min(_colours.width - 1, static_cast<int>(std::max(a.x, b.x) + reach));
    const int top = std::max(0, static_cast<int>(std::min(a.y, b.y) - reach));
    const int bottom = std::min(_colours.height - 1, static_cast<int>(std::max(a.y, b.y) + reach));
    for (int y = top; y <= bottom; ++y) {
      for (int x = left; x <= right; ++x) {
        const Vec2 p = {static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F};
        const float inside = 0.5F * width + 0.5F - DistanceToSegment(p, a, b);
        _cover.At(x, y) = std::max(_cover.At(x, y), Clamp01(inside));
      }
    }
    low = {std::min(low.x, b.x), std::min(low.y, b.y)};
    high = {std::max(high.x, b.x), std::max(high.y, b.y)};
  }
  const int bottom = std::min(_colours.height - 1, static_cast<int>(high.y + reach));
  const int right = std::min(_colours.width - 1, static_cast<int>(high.x + reach));
  for (int y = std::max(0, static_cast<int>(low.y - reach)); y <= bottom; ++y) {
    for (int x = std::max(0, static_cast<int>(low.x - reach)); x <= right; ++x) {
      _colours.At(x, y) = Mix(_colours.At(x, y), ink, _cover.At(x, y));
      _cover.At(x, y) = 0;
    }
  }
}

void Sheet::Write(std::string_view text, Vec2 start, float height, float width, Vec3 ink) {
  const float unit = height / 6;
  for (const char name : text) {
    // Narrow letters are drawn in the middle of the grid.
    const float indent = Advance(name) < 5 ? 1.0F : 0.0F;
    Stroke stroke;
    bool rounded = false;
    for (const char* at = StrokesOf(name);; ++at) {
      if (*at == '~') {
        rounded = true;
      } else if (*at == ' ' || *at == '\0') {
        if (!stroke.empty()) {
          Draw(rounded ? Rounded(stroke) : stroke, width, ink);
        }
        stroke.clear();
        rounded = false;
        if (*at == '\0') {
          break;
        }
      } else {
        stroke.push_back(start + Vec2{static_cast<float>(at[0] - '0') - indent,
                                      -static_cast<float>(at[1] - '0')} *
                                     unit);
        ++at;
      }
    }
    start.x += Advance(name) * unit;
  }
}

float Sheet::TextWidth(std::string_view text, float height) {
  float width = 0;
  for (const char name : text) {
    width += Advance(name);
  }
  return (width - 1.8F) * height / 6;
}

Bytes Sheet::Picture() const {
  Bytes picture = {_colours.width, _colours.height, 3, {}};
  picture.values.reserve(_colours.values.size() * 3);
  for (const Vec3 colour : _colours.values) {
    for (const float channel : {colour.x, colour.y, colour.z}) {
      picture.values.push_back(static_cast<uint8_t>(std::clamp(channel + 0.5F, 0.0F, 255.0F)));
    }
  }
  return picture;
}

Stroke Rounded(Stroke stroke) {
  for (int pass = 0; pass < 4; ++pass) {
    Stroke smooth = {stroke.front()};
    for (size_t i = 0; i + 1 < stroke.size(); ++i) {
      const Vec2 a = stroke[i], b = stroke[i + 1];
      smooth.push_back(a * 0.75F + b * 0.25F);
      smooth.push_back(a * 0.25F + b * 0.75F);
    }
    smooth.push_back(stroke.back());
    stroke = std::move(smooth);
  }
  return stroke;
}

Stroke Circle(Vec2 middle, float radius, float from, float to) {
  Stroke stroke;
  const int steps = 8 + static_cast<int>(radius * std::abs(to - from) / 3);
  for (int i = 0; i <= steps; ++i) {
    const float angle = Mix(from, to, static_cast<float>(i) / static_cast<float>(steps));
    stroke.push_back(middle + Vec2{std::cos(angle), std::sin(angle)} * radius);
  }
  return stroke;
}

} // namespace scenes
