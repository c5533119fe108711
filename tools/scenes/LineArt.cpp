// A sheet from a drawing book: text, lines, hatching, and a relief drawn by bent lines.

#include "Pen.h"
#include "Scenes.h"

#include <string>

namespace scenes {

namespace {

constexpr Vec3 PAPER = {247, 243, 232}, INK = {32, 38, 58}, RED = {178, 52, 40},
               BLUE = {58, 102, 150}, WASH = {214, 205, 183};

void Centred(Sheet& sheet, std::string_view text, Vec2 middle, float height, float width,
             Vec3 ink) {
  sheet.Write(text, {middle.x - 0.5F * Sheet::TextWidth(text, height), middle.y}, height, width,
              ink);
}

void Arrow(Sheet& sheet, Vec2 from, Vec2 to, float width, Vec3 ink) {
  const Vec2 way = (to - from) * (1 / Length(to - from)), side = {-way.y, way.x};
  sheet.Draw({from, to}, width, ink);
  sheet.Draw({to - way * 13 + side * 5, to, to - way * 13 - side * 5}, width, ink);
}

void Dashes(Sheet& sheet, Vec2 from, Vec2 to, float width, Vec3 ink) {
  const float length = Length(to - from);
  const Vec2 way = (to - from) * (1 / length);
  for (int i = 0; i < static_cast<int>(length / 14) + 1; ++i) {
    const float at = 14 * static_cast<float>(i);
    sheet.Draw({from + way * at, from + way * std::min(at + 8, length)}, width, ink);
  }
}

void Border(Sheet& sheet) {
  const auto frame = [&](float inset, float width) {
    const float right = 1200 - inset, bottom = 800 - inset;
    sheet.Draw({{inset, inset}, {right, inset}, {right, bottom}, {inset, bottom}, {inset, inset}},
               width, INK);
  };
  frame(24, 5);
  frame(34, 1.5F);
  Centred(sheet, "HOW LIGHT DRAWS A RELIEF", {600, 100}, 38, 5.5F, INK);
  sheet.Draw({{190, 122}, {1010, 122}}, 2, RED);
  sheet.Draw({{330, 129}, {870, 129}}, 1, INK);
}

// ---- figure 1: a lamp over a profile

float ProfileAt(float x) {
  const float t = (x - 80) / 640;
  return 470 - 46 * std::sin(t * 9.2F + 0.4F) - 26 * std::sin(t * 17 + 2) * t;
}

Vec2 NormalAt(float x) {
  const Vec2 normal = {ProfileAt(x + 1) - ProfileAt(x - 1), -2};
  return normal * (1 / Length(normal));
}

void Lamp(Sheet& sheet, Vec2 at) {
  for (int i = 0; i < 16; ++i) {
    const float angle = static_cast<float>(i) * PI / 8;
    const Vec2 way = {std::cos(angle), std::sin(angle)};
    sheet.Draw({at + way * 24, at + way * (i % 2 == 0 ? 40.0F : 33.0F)}, 2.2F, RED);
  }
  sheet.Disc(at, 16, RED);
  sheet.Disc(at + Vec2{-4, -4}, 5, PAPER);
}

void Profiles(Sheet& sheet) {
  const Vec2 lamp = {150, 210};
  for (int i = 0; i < 78; ++i) {
    const float x = 60 + 9 * static_cast<float>(i);
    // Hatching below the profile, each line cut where it meets it.
    Stroke line;
    for (int j = 0; j < 95; ++j) {
      const float step = 2 * static_cast<float>(j);
      const Vec2 p = {x + step * 0.6F, 590 - step};
      if (p.x > 80 && p.x < 720 && p.y > ProfileAt(p.x) + 5) {
        line.push_back(p);
      }
    }
    if (line.size() > 1) {
      sheet.Draw(line, 1.1F, BLUE);
    }
  }
  for (int i = 0; i < 320; ++i) {
    const float x = 80 + 2 * static_cast<float>(i);
    const Vec2 p = {x, ProfileAt(x)}, ray = lamp - p;
    const float lit = std::max(0.0F, Dot(NormalAt(x), ray * (1 / Length(ray))));
    sheet.Draw({p, {x + 2, ProfileAt(x + 2)}}, 9 - 7 * lit, INK);
  }
  for (const float x : {130.0F, 235.0F, 330.0F, 430.0F, 520.0F, 610.0F, 690.0F}) {
    const Vec2 foot = {x, ProfileAt(x)};
    const Vec2 way = (foot - lamp) * (1 / Length(foot - lamp));
    if (x < 600) { // the hill hides the others
      Dashes(sheet, lamp + way * 46, foot - way * 6, 1.4F, RED);
    }
    Arrow(sheet, foot, foot + NormalAt(x) * 62, 2, INK);
  }
  const Vec2 foot = {430, ProfileAt(430)}, ray = lamp - foot;
  const float from = std::atan2(ray.y, ray.x), to = std::atan2(NormalAt(430).y, NormalAt(430).x);
  sheet.Draw(Circle(foot, 44, from, to), 2, BLUE);
  Lamp(sheet, lamp);
  sheet.Write("LAMP", {200, 205}, 16, 2, INK);
  sheet.Write("ANGLE", {414, 452}, 13, 1.8F, BLUE);
  sheet.Write("NORMAL", {652, 378}, 15, 2, INK);
  sheet.Write("FIG. 1", {80, 622}, 15, 2, INK);
  sheet.Write("THE LESS THE ANGLE, THE MORE LIGHT.", {170, 622}, 15, 1.8F, INK);
}

// ---- figure 2: a relief of bent lines

float Relief(float u, float v) {
  const float radius = std::sqrt(u * u + v * v), angle = std::atan2(v, u);
  const float petals = 0.5F + 0.5F * std::cos(8 * angle);
  const float flower =
      SmoothStep(0.72F, 0.55F, radius / (0.62F + 0.38F * petals)) * (0.5F + 0.3F * petals);
  return flower + 0.55F * SmoothStep(0.26F, 0.10F, radius) + 0.35F * Bell(radius - 0.88F, 0.06F);
}

void BentLines(Sheet& sheet) {
  const Vec2 middle = {950, 310};
  for (int row = -38; row <= 38; ++row) {
    const float v = static_cast<float>(row) / 38;
    Stroke line;
    for (int column = -95; column <= 95; ++column) {
      const float u = static_cast<float>(column) / 95;
      line.push_back(middle + Vec2{u * 180, v * 150 - 15 * Relief(u * 1.05F, v * 1.05F)});
    }
    for (size_t i = 0; i + 1 < line.size(); ++i) {
      const float slope = (line[i + 1].y - line[i].y) / (line[i + 1].x - line[i].x);
      sheet.Draw({line[i], line[i + 1]}, std::clamp(1.5F + 1.6F * slope, 0.7F, 3.2F), INK);
    }
  }
  sheet.Write("FIG. 2", {770, 500}, 15, 2, INK);
  sheet.Write("HEIGHTS AS LINES", {860, 500}, 15, 1.8F, INK);
}

// ---- figure 3: the three lamps, and a ball under each

void Ball(Sheet& sheet, Vec2 middle, float radius, Vec2 light) {
  sheet.Disc(middle, radius, WASH);
  for (int i = 1; i < 9; ++i) {
    // Crescents that crowd away from the light.
    const float t = static_cast<float>(i) / 9;
    Stroke crescent;
    for (const Vec2 p : Circle({0, 0}, radius, -1.35F, 1.35F)) {
      const Vec2 squeezed = {p.x * (1 - 1.25F * t * t), p.y};
      crescent.push_back(middle - light * squeezed.x + Vec2{-light.y, light.x} * squeezed.y);
    }
    sheet.Draw(crescent, 1.2F, INK);
  }
  sheet.Draw(Circle(middle, radius), 2.4F, INK);
}

void Lamps(Sheet& sheet) {
  static constexpr const char* NAMES[3] = {"POINT", "SPOT", "SUN"};
  for (int i = 0; i < 3; ++i) {
    const Vec2 ball = {820 + static_cast<float>(i) * 130, 655}, lamp = ball + Vec2{-38, -84};
    const Vec2 toLight = (lamp - ball) * (1 / Length(lamp - ball));
    Ball(sheet, ball, 34, toLight);
    if (i == 2) {
      for (int ray = -2; ray <= 2; ++ray) {
        const Vec2 side = Vec2{-toLight.y, toLight.x} * (static_cast<float>(ray) * 14);
        Arrow(sheet, ball + toLight * 92 + side, ball + toLight * 52 + side, 1.8F, RED);
      }
    } else {
      sheet.Disc(lamp, 8, RED);
      for (int ray = 0; ray < (i == 0 ? 12 : 3); ++ray) {
        const float angle =
            i == 0 ? static_cast<float>(ray) * PI / 6
                   : std::atan2(-toLight.y, -toLight.x) + 0.33F * static_cast<float>(ray - 1);
        const Vec2 way = {std::cos(angle), std::sin(angle)};
        sheet.Draw({lamp + way * 13, lamp + way * (i == 0 ? 22.0F : 40.0F)}, 1.8F, RED);
      }
    }
    Centred(sheet, NAMES[i], {ball.x, 722}, 13, 1.8F, INK);
  }
  sheet.Write("FIG. 3", {770, 750}, 15, 2, INK);
}

void Ruler(Sheet& sheet) {
  sheet.Draw({{80, 700}, {720, 700}}, 2, INK);
  for (int i = 0; i <= 50; ++i) {
    const float x = 80 + 12.8F * static_cast<float>(i), tick = i % 10 == 0  ? 20
                                                               : i % 5 == 0 ? 14
                                                                            : 8;
    sheet.Draw({{x, 700}, {x, 700 - tick}}, 1.5F, INK);
    if (i % 10 == 0) {
      Centred(sheet, std::to_string(i), {x, 722}, 13, 1.8F, INK);
    }
  }
  sheet.Write("BRIGHT = TURNED TO THE LAMP, DARK = TURNED AWAY", {80, 755}, 14, 1.7F, RED);
}

} // namespace

Bytes LineArt() {
  Sheet sheet(1200, 800, PAPER);
  Border(sheet);
  Profiles(sheet);
  BentLines(sheet);
  Lamps(sheet);
  Ruler(sheet);
  return sheet.Picture();
}

} // namespace scenes
