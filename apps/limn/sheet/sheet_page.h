// The page that a contact sheet is drawn on: areas of one colour, pictures, and lines of text.
#pragma once

#include "sheet_layout.h"

#include <cstdint>
#include <string>
#include <vector>

namespace limn {

struct PageColor {
  uint8_t component[3];
};

enum class Weight { Regular, Bold };
enum class Align { Left, Right };

// size: of the letters, in pixels.
struct TextStyle {
  int size;
  Weight weight;
  PageColor color;
};

class SheetPage {
public:
  // Throws std::bad_alloc.
  SheetPage(int width, int height, PageColor color);

  // Areas and pictures must lie on the page.
  void Fill(const Box& box, PageColor color);
  // pixels: three bytes each, without padding.
  void Place(const Box& box, const std::vector<uint8_t>& pixels);
  // One line in the middle of the box's height; one that is too wide ends in an ellipsis. Answers
  // its width. Throws vips::VError.
  int Write(const Box& box, const std::string& text, const TextStyle& style, Align align);

  std::vector<uint8_t> TakePixels() { return std::move(_pixels); }

private:
  uint8_t* _At(int x, int y) { return _pixels.data() + (static_cast<size_t>(y) * _width + x) * 3; }

  int _width;
  int _height;
  std::vector<uint8_t> _pixels;
};

} // namespace limn
