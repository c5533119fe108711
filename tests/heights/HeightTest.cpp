// The laws of heights.

#include "LM_height_filters.h"
#include "LM_height_source.h"
#include "LM_normals.h"
#include "LM_plane_scaling.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

LM_height_source Prepared(int smoothing, int detail, bool fit) {
  LM_height_source source;
  source.kind = LM_height_kind::Luminance;
  source.smoothing = smoothing;
  source.detail = detail;
  source.fit = fit;
  return source;
}

LM_height_plane Noisy(int width, int height, double mean, double deviation) {
  std::mt19937 random(5);
  LM_height_plane plane(width, height);
  for (uint16_t& value : plane.values) {
    double sum = 0; // of twelve even ones: near enough to a bell, and the same in every library
    for (int i = 0; i < 12; ++i)
      sum += random() / 4294967296.0;
    value = static_cast<uint16_t>(mean + deviation * (sum - 6));
  }
  return plane;
}

// Waves as wide as a part of the picture, and an edge as soft.
LM_height_plane Waves(int width, int height) {
  LM_height_plane plane(width, height);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const double across = (x + 0.5) / width;
      const double down = (y + 0.5) / width;
      plane.Row(y)[x] =
          static_cast<uint16_t>(32768 + 4000 * std::sin(130 * across) * std::cos(110 * down) +
                                9000 * std::tanh(100 * (across - 0.6)));
    }
  return plane;
}

double SteepnessOf(const LM_height_plane& plane) {
  double sum = 0;
  for (int y = 0; y < plane.height; ++y)
    for (int x = 1; x < plane.width; ++x)
      sum += std::pow(plane.Row(y)[x] - plane.Row(y)[x - 1], 2);
  return std::sqrt(sum / static_cast<double>(plane.values.size()));
}

// As a photograph of that size is: made smaller, prepared, and made as large again.
LM_height_plane HeightsOf(const LM_height_source& source, const LM_height_plane& picture) {
  const LM_plane_size size = LM_PreparedSize(source, picture.width, picture.height);
  LM_height_plane plane = LM_ScaledPlane(picture, size.width, size.height);
  LM_PrepareHeights(source, std::max(picture.width, picture.height), plane);
  return LM_ScaledPlane(plane, picture.width, picture.height);
}

TEST(Heights, AConstantStaysConstant) {
  for (const uint16_t value : {0, 1, 30000, 65535})
    for (const LM_height_source& source :
         {Prepared(16, 0, false), Prepared(0, 20, false), Prepared(16, 20, true),
          Prepared(255, 1000, true), Prepared(0, 0, true)})
      for (const auto& [width, height] : {std::pair{1, 1}, {1, 40}, {63, 5}, {2500, 30}}) {
        LM_height_plane plane(width, height);
        std::fill(plane.values.begin(), plane.values.end(), value);
        const LM_height_plane heights = HeightsOf(source, plane);
        for (const uint16_t found : heights.values)
          ASSERT_EQ(found, heights.values[0]) << value << ", " << width << " × " << height;
      }
}

TEST(Heights, NothingAskedForIsThePlaneItselfAndInvertingTwiceToo) {
  const LM_height_plane plane = Noisy(2100, 37, 30000, 9000);
  LM_height_source source = Prepared(0, 0, false);
  EXPECT_TRUE(LM_IsPlain(source));
  EXPECT_EQ(HeightsOf(source, plane).values, plane.values);
  source.invert = true;
  const LM_height_plane inverted = HeightsOf(source, plane);
  EXPECT_NE(inverted.values, plane.values);
  EXPECT_EQ(HeightsOf(source, inverted).values, plane.values);
}

TEST(Heights, SlopesAreThoseOfAnySizeOnceFitted) {
  for (const LM_height_source& source : {Prepared(0, 0, true), Prepared(16, 20, true)})
    for (const int width : {500, 900, 1500}) {
      const double small = SteepnessOf(HeightsOf(source, Waves(width, width / 10)));
      const double large = SteepnessOf(HeightsOf(source, Waves(2 * width, width / 5)));
      EXPECT_NEAR(large / small, 1, 0.05) << width << ", detail " << source.detail;
    }
}

// A step of 80 levels among grain of 5: the grain goes, the step keeps its height and place.
TEST(Heights, SmoothingTakesTheGrainAndKeepsTheEdge) {
  LM_height_plane plane = Noisy(400, 100, 20000, 5.3 * 257);
  for (int y = 0; y < plane.height; ++y)
    for (int x = 200; x < plane.width; ++x)
      plane.Row(y)[x] = static_cast<uint16_t>(plane.Row(y)[x] + 80 * 257);
  LM_edge_keeper(plane, 4, 16 * 257).Advance(plane.height);
  double squares = 0;
  for (int x = 20; x < 180; ++x)
    squares += std::pow(plane.Row(50)[x] - 20000, 2);
  EXPECT_LT(std::sqrt(squares / 160), 1.0 * 257);
  EXPECT_GT(plane.Row(50)[203] - plane.Row(50)[196], 65 * 257);
}

// What the sums of a running square are, added up plainly.
TEST(Heights, MeansAreThoseOfTheSquare) {
  const LM_height_plane plane = Noisy(23, 17, 30000, 9000);
  for (const double radius : {0.0, 0.5, 1.25, 4.0, 30.5}) {
    LM_height_plane means(plane.width, plane.height);
    LM_box_means box(plane.width, plane.height, radius);
    for (int y = 0; y < plane.height; ++y)
      box.MakeRow(y, plane, means.Row(y));
    const int reach = static_cast<int>(std::ceil(radius));
    const double rim = radius == reach ? 1 : radius - std::floor(radius);
    for (int y = 0; y < plane.height; ++y)
      for (int x = 0; x < plane.width; ++x) {
        double sum = 0;
        for (int v = -reach; v <= reach; ++v)
          for (int u = -reach; u <= reach; ++u)
            sum += (std::abs(u) == reach ? rim : 1) * (std::abs(v) == reach ? rim : 1) *
                   plane.Row(std::clamp(y + v, 0,
                                        plane.height - 1))[std::clamp(x + u, 0, plane.width - 1)];
        const double mean = sum / std::pow(2 * radius + 1, 2);
        ASSERT_NEAR(means.Row(y)[x], mean, 0.51) << radius << " at " << x << ", " << y;
      }
  }
}

// In place, behind rows that come singly or many at a time, whatever the filters reach: a row is
// overwritten only when nothing needs it any more.
TEST(Heights, ComingRowByRowChangesNoBit) {
  for (const auto& [width, height] : {std::pair{300, 190}, {40, 300}, {7, 3}, {5, 1}})
    for (LM_height_source source : {Prepared(16, 0, false), Prepared(0, 20, true),
                                    Prepared(16, 70, true), Prepared(9, 1000, true)}) {
      const LM_height_plane plane = Noisy(width, height, 30000, 5000);
      source.invert = source.smoothing > 0;
      LM_height_plane whole = plane;
      LM_PrepareHeights(source, 4000, whole);
      for (const int step : {1, 7}) {
        LM_height_plane grown(width, height); // its last rows are not there yet
        LM_height_maker maker(source, 4000, grown);
        for (int numRows = 0; numRows < height;) {
          const int first = numRows;
          numRows = std::min(height, first + step);
          std::copy(plane.Row(first), plane.Row(numRows), grown.Row(first));
          maker.Advance(numRows);
        }
        EXPECT_EQ(grown.values, whole.values) << width << " × " << height << ", " << source.detail;
      }
    }
}

// What the filters say of themselves, a whole plane after the other.
TEST(Heights, FiltersAreMeansOfWholePlanes) {
  const LM_height_plane plane = Noisy(90, 70, 30000, 5000);
  const auto meansOf = [](const LM_height_plane& of, double radius) {
    LM_height_plane means(of.width, of.height);
    LM_box_means box(of.width, of.height, radius);
    for (int y = 0; y < of.height; ++y)
      box.MakeRow(y, of, means.Row(y));
    return means;
  };
  const double radius = 90 * 40 / 1000.0;
  const LM_height_plane around = meansOf(meansOf(meansOf(plane, radius), radius), radius);
  const LM_height_plane fine = meansOf(meansOf(plane, radius * 0.02), radius * 0.02);
  LM_height_plane heights = plane;
  LM_PrepareHeights(Prepared(0, 40, false), 90, heights);
  for (size_t i = 0; i < plane.values.size(); ++i) {
    const double height = fine.values[i] - around.values[i];
    ASSERT_NEAR(heights.values[i], 32768 + height / (1 + std::abs(height) / (38 * 257)), 0.51);
  }
}

TEST(Heights, APieceOfARowIsThatOfTheWhole) {
  const LM_height_plane plane = Noisy(31, 19, 30000, 9000);
  const LM_plane_enlarger enlarger(plane, 100, 77);
  std::vector<double> scratch;
  std::vector<uint16_t> whole(100);
  std::vector<uint16_t> piece(100);
  for (const int y : {76, 0, 40})
    for (const auto& [left, count] : {std::pair{0, 1}, {99, 1}, {13, 50}}) {
      enlarger.MakeRow(y, 0, 100, whole.data(), scratch);
      enlarger.MakeRow(y, left, count, piece.data(), scratch);
      for (int i = 0; i < count; ++i)
        ASSERT_EQ(piece[static_cast<size_t>(i)], whole[static_cast<size_t>(left + i)]);
    }
}

// Each pixel of the reduction is the mean of what it covers, parts of pixels too.
TEST(Heights, SmallerIsTheMeanOfWhatIsCovered) {
  LM_height_plane plane(5, 1);
  plane.values = {10, 20, 30, 40, 50};
  EXPECT_EQ(LM_ScaledPlane(plane, 2, 1).values, (std::vector<uint16_t>{18, 42}));
  EXPECT_EQ(LM_ScaledPlane(plane, 1, 1).values, (std::vector<uint16_t>{30}));
}

// Heights to normals of 16 bits, as a file has them, and back.
LM_integrated_heights ThroughNormals(const LM_height_plane& plane, LM_normals_y written,
                                     LM_normals_y read, double* fit = nullptr) {
  LM_slopes slopes(plane.width, plane.height);
  const auto width = static_cast<size_t>(plane.width);
  std::vector<uint16_t> row(3 * width);
  std::vector<float> normals(row.size());
  for (int y = 0; y < plane.height; ++y) {
    LM_NormalsOfRow(plane, y, written, row.data());
    std::transform(row.begin(), row.end(), normals.begin(),
                   [](uint16_t word) { return (static_cast<float>(word) - 32768.0F) / 32767.0F; });
    const size_t at = static_cast<size_t>(y) * width;
    EXPECT_EQ(LM_SlopesOfNormals(normals.data(), width, read, &slopes.across[at], &slopes.down[at]),
              0U);
  }
  if (fit != nullptr)
    *fit = LM_FitTogether(slopes);
  return LM_HeightsOfSlopes(slopes);
}

double WorstThroughNormals(const LM_height_plane& plane) {
  const LM_integrated_heights made = ThroughNormals(plane, LM_normals_y::Up, LM_normals_y::Up);
  EXPECT_EQ(made.share, 1);
  double mean = 0;
  for (const uint16_t value : plane.values)
    mean += value / static_cast<double>(plane.values.size());
  double worst = 0;
  for (size_t i = 0; i < plane.values.size(); ++i)
    worst = std::max(worst, std::abs(made.plane.values[i] - 32768 - (plane.values[i] - mean)));
  return worst;
}

// Waves and a slope, a hill that hardly rises, a ramp of whose slope normals hold 19 parts at most,
// and ripples.
TEST(Heights, NormalsAndBackAreTheSameHeights) {
  double (*const fields[])(double, double) = {
      [](double x, double y) {
        return 9000 * std::sin(0.05 * x + 1) * std::cos(0.07 * y) + 20 * x - 11 * y;
      },
      [](double x, double y) { return 200 * std::exp(-(x * x + y * y) / 90000); },
      [](double x, double y) { return 1.3 * x - 2.33 * y; },
      [](double x, double y) { return 3000 * std::cos(0.5 * x) * std::cos(0.4 * y); }};
  for (const auto& [width, height] :
       {std::pair{1, 1}, {1, 7}, {5, 6}, {2, 90}, {201, 130}, {640, 479}, {63, 900}, {1025, 31}})
    for (const auto& field : fields) {
      if (field == fields[3] && std::min(width, height) < 7)
        continue; // too few to see a ripple by
      LM_height_plane plane(width, height);
      for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
          plane.Row(y)[x] = static_cast<uint16_t>(30000.5 + field(x, y));
      // 1, and the mean's own rounding
      EXPECT_LE(WorstThroughNormals(plane), 1.5)
          << width << " × " << height << ", field " << &field - fields;
    }
}

TEST(Heights, NormalsTellWhichWayGreenIs) {
  const LM_height_plane plane = Waves(300, 200);
  double fit = 0;
  ThroughNormals(plane, LM_normals_y::Up, LM_normals_y::Up, &fit);
  EXPECT_GT(fit, 0.9);
  ThroughNormals(plane, LM_normals_y::Down, LM_normals_y::Up, &fit);
  EXPECT_LT(fit, -0.9);
}

TEST(Heights, WhatIsNoNormalIsFlatAndWhatIsTooHighIsMadeLower) {
  const float nan = std::nanf("");
  const float normals[] = {0, 0, 0, 0, 0, -1, nan, 0, 1, 0, nan, nan, 0.2F, 0, 0.2F, 1, 0, 1e-9F};
  float across[6];
  float down[6];
  EXPECT_EQ(LM_SlopesOfNormals(normals, 6, LM_normals_y::Up, across, down), 5U);
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(across[i], 0) << i;
  EXPECT_EQ(across[5], -16);
  LM_slopes steep(2000, 2);
  std::fill(steep.across.begin(), steep.across.end(), 1.0F);
  const LM_integrated_heights made = LM_HeightsOfSlopes(steep);
  EXPECT_NEAR(made.share, 16.0 / 2000, 1e-3);
  EXPECT_LT(made.plane.values[0], 10);
  EXPECT_GT(made.plane.values[1999], 65525);
}

} // namespace
