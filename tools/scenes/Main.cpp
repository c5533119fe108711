// limn_scenes PICTURE FOLDER [SAMPLES [THREADS [SCALE]]]: draws one of the bundled pictures.

#include "Darkroom.h"
#include "Scenes.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vips/vips.h>

namespace scenes {

namespace {

struct Recipe {
  const char* name;
  Scene (*scene)();
  int width, height;
  int samples;
  Development development;
  float reliefReach; // 0: no height map
};

constexpr char JPEG_OPTIONS[] = "[Q=89,optimize-coding,interlace,strip]";

const Recipe RECIPES[] = {
    {"still-life", StillLife, 1800, 1200, 20, {1.15F, 1.4F, 1.05F, 1.2F, 0.10F}, 50},
    {"landscape", Landscape, 1500, 1000, 16, {1.3F, 1.35F, 1.1F, 1.2F, 0.10F}, 0},
    {"texture", OldWall, 1000, 1000, 24, {1.0F, 1.3F, 1.0F, 1.2F, 0.0F}, 60},
    {"portrait", Portrait, 1000, 1250, 20, {1.15F, 1.3F, 1.0F, 1.2F, 0.10F}, 0},
    {"plaque", Plaque, 800, 800, 12, {1.1F, 1.3F, 1.0F, 4.0F, 0.0F}, 60},
    {"pebbles", Pebbles, 900, 900, 12, {1.1F, 1.3F, 1.0F, 4.0F, 0.0F}, 60},
};

void Draw(const Recipe& recipe, const std::string& folder, RenderOptions options, float scale) {
  options.width = static_cast<int>(std::lround(static_cast<float>(recipe.width) * scale));
  options.height = static_cast<int>(std::lround(static_cast<float>(recipe.height) * scale));
  if (options.samples <= 0) {
    options.samples = recipe.samples;
  }
  Scene scene = recipe.scene();
  scene.detail /= std::min(1.0F, scale);
  Film film = Render(scene, options);
  if (recipe.reliefReach > 0) {
    Write(HeightMap(film, recipe.reliefReach * scale), folder + "/" + recipe.name + "-height.png");
  }
  Denoise(film);
  Write(Develop(film, recipe.development), folder + "/" + recipe.name + ".jpg" + JPEG_OPTIONS);
}

int Run(const std::vector<std::string>& arguments) {
  if (arguments.size() < 2) {
    std::fputs("usage: limn_scenes PICTURE FOLDER [SAMPLES [THREADS [SCALE]]]\n", stderr);
    return 2;
  }
  const auto number = [&](size_t i, double otherwise) {
    return arguments.size() > i ? std::atof(arguments[i].c_str()) : otherwise;
  };
  RenderOptions options;
  options.samples = std::clamp(static_cast<int>(number(2, 0)), 0, 65536);
  options.threads = std::clamp(static_cast<int>(number(3, 1)), 1, 64);
  const float scale = std::clamp(static_cast<float>(number(4, 1)), 0.05F, 4.0F);
  if (arguments[0] == "line-art") {
    Write(LineArt(), arguments[1] + "/line-art.png[palette,Q=100,dither=0,strip]");
    return 0;
  }
  for (const Recipe& recipe : RECIPES) {
    if (arguments[0] == recipe.name) {
      Draw(recipe, arguments[1], options, scale);
      return 0;
    }
  }
  std::fprintf(stderr, "limn_scenes: there is no picture named %s\n", arguments[0].c_str());
  return 2;
}

} // namespace

} // namespace scenes

int main(int count, char** words) {
  try {
    if (VIPS_INIT(words[0]) != 0) {
      return 1;
    }
    const int result = scenes::Run({words + 1, words + count});
    vips_shutdown();
    return result;
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "limn_scenes: %s\n", problem.what());
    return 1;
  }
}
