#include "Darkroom.h"

#include "Noise.h"

namespace scenes {

namespace {

constexpr float STEEPEST = 0.7F; // slopes above this count little more than this
constexpr int SWEEPS = 24;

// Slopes to the right and downwards, in pixels a pixel.
Plane<Vec2> Slopes(const Film& film) {
  Plane<Vec2> slopes(film.normal.width, film.normal.height);
  for (size_t i = 0; i < slopes.values.size(); ++i) {
    const Vec3 normal = film.normal.values[i];
    const float facing = std::max(normal.z, 0.1F);
    const Vec2 slope = {-normal.x / facing, normal.y / facing};
    slopes.values[i] = slope * (1 / (1 + Length(slope) / STEEPEST));
  }
  return slopes;
}

Plane<float> Halved(const Plane<float>& fine) {
  Plane<float> coarse((fine.width + 1) / 2, (fine.height + 1) / 2);
  for (int y = 0; y < coarse.height; ++y) {
    for (int x = 0; x < coarse.width; ++x) {
      coarse.At(x, y) = fine.Nearest(2 * x, 2 * y) + fine.Nearest(2 * x + 1, 2 * y) +
                        fine.Nearest(2 * x, 2 * y + 1) + fine.Nearest(2 * x + 1, 2 * y + 1);
    }
  }
  return coarse;
}

// Solves laplacian(h) − pull · h = source, from a coarse solution to a fine one.
Plane<float> Solve(const Plane<float>& source, float pull) {
  Plane<float> height(source.width, source.height);
  if (source.width > 4 && source.height > 4) {
    const Plane<float> coarse = Solve(Halved(source), pull * 4);
    for (int y = 0; y < height.height; ++y) {
      for (int x = 0; x < height.width; ++x) {
        const int sideways = x % 2 == 0 ? -1 : 1, updown = y % 2 == 0 ? -1 : 1;
        height.At(x, y) = 0.5625F * coarse.Nearest(x / 2, y / 2) +
                          0.1875F * coarse.Nearest(x / 2 + sideways, y / 2) +
                          0.1875F * coarse.Nearest(x / 2, y / 2 + updown) +
                          0.0625F * coarse.Nearest(x / 2 + sideways, y / 2 + updown);
      }
    }
  }
  for (int sweep = 0; sweep < 2 * SWEEPS; ++sweep) {
    for (int y = 0; y < height.height; ++y) {
      for (int x = (y + sweep) % 2; x < height.width; x += 2) {
        const float around = height.Nearest(x - 1, y) + height.Nearest(x + 1, y) +
                             height.Nearest(x, y - 1) + height.Nearest(x, y + 1);
        const float settled = (around - source.At(x, y)) / (4 + pull);
        height.At(x, y) += 1.5F * (settled - height.At(x, y));
      }
    }
  }
  return height;
}

// How much the slopes spread, at every pixel; the surface is level across the picture's edge.
Plane<float> SpreadOfSlopes(const Film& film) {
  const Plane<Vec2> slopes = Slopes(film);
  Plane<float> spread(slopes.width, slopes.height);
  for (int y = 0; y < spread.height; ++y) {
    for (int x = 0; x < spread.width; ++x) {
      const Vec2 here = slopes.At(x, y);
      if (x + 1 < spread.width) {
        const float right = 0.5F * (here.x + slopes.At(x + 1, y).x);
        spread.At(x, y) += right;
        spread.At(x + 1, y) -= right;
      }
      if (y + 1 < spread.height) {
        const float down = 0.5F * (here.y + slopes.At(x, y + 1).y);
        spread.At(x, y) += down;
        spread.At(x, y + 1) -= down;
      }
    }
  }
  return spread;
}

// Rounds to whole levels and hands the rest on to the neighbours, so that a gentle slope does not
// become terraces.
Bytes Rounded(Plane<float> levels) {
  Bytes picture = {levels.width, levels.height, 1, {}};
  picture.values.reserve(levels.values.size());
  const auto hand = [&levels](int x, int y, float rest) {
    if (x >= 0 && x < levels.width && y < levels.height) {
      levels.At(x, y) += rest;
    }
  };
  for (int y = 0; y < levels.height; ++y) {
    for (int x = 0; x < levels.width; ++x) {
      const float jitter = 0.3F * (UnitFloat(Hash(x, y, 5)) - 0.5F);
      const float level = std::clamp(std::round(levels.At(x, y) + jitter), 0.0F, 255.0F);
      const float rest = std::clamp(levels.At(x, y), 0.0F, 255.0F) - level;
      hand(x + 1, y, rest * 0.4375F);
      hand(x - 1, y + 1, rest * 0.1875F);
      hand(x, y + 1, rest * 0.3125F);
      hand(x + 1, y + 1, rest * 0.0625F);
      picture.values.push_back(static_cast<uint8_t>(level));
    }
  }
  return picture;
}

} // namespace

Bytes HeightMap(const Film& film, float reach) {
  Plane<float> height = Solve(SpreadOfSlopes(film), 1 / (reach * reach));
  std::vector<float> sorted = height.values;
  std::sort(sorted.begin(), sorted.end());
  const size_t outliers = sorted.size() / 500;
  const float low = sorted[outliers], high = sorted[sorted.size() - 1 - outliers];
  for (float& value : height.values) {
    value = 4 + 247 * (value - low) / (high - low);
  }
  return Rounded(std::move(height));
}

} // namespace scenes
