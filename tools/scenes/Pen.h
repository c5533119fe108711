// Drawing with a round pen, and lettering with it.
#pragma once

#include "Picture.h"

#include <string_view>
#include <vector>

namespace scenes {

using Stroke = std::vector<Vec2>;

// A sheet of paper. Places are in pixels from its top left corner.
class Sheet {
public:
  Sheet(int width, int height, Vec3 paper);

  // Colours are bytes' values, 0 to 255. The stroke covers each pixel once, however it bends.
  void Draw(const Stroke& stroke, float width, Vec3 ink);
  void Disc(Vec2 middle, float radius, Vec3 ink) { Draw({middle, middle}, 2 * radius, ink); }

  // Writes from `start`, at the foot of the first letter, in capitals `height` tall; what has no
  // letter is left blank.
  void Write(std::string_view text, Vec2 start, float height, float width, Vec3 ink);
  static float TextWidth(std::string_view text, float height);

  Bytes Picture() const;

private:
  Plane<Vec3> _colours;
  Plane<float> _cover; // of the stroke being drawn; all 0 between strokes
};

// Cuts the corners until the stroke is smooth; its ends stay.
Stroke Rounded(Stroke stroke);
Stroke Circle(Vec2 middle, float radius, float from = 0, float to = 2 * PI);

} // namespace scenes
