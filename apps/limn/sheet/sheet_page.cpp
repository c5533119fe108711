#include "sheet_page.h"

#include "image_file.h"
#include "report.h"

#include "MacStrings.h"

#include <algorithm>
#include <memory>
#include <vips/vips8>

namespace limn {
namespace {

using vips::VImage;

constexpr const char* FONTS = "DejaVu Sans, Noto Sans, Liberation Sans, Sans";
constexpr int DPI = 72; // at which a point is a pixel

// The letters' coverage, 0 to 255; their place in the line is the image's offset.
VImage Letters(const std::string& text, const TextStyle& style) {
  const std::string font = std::string(FONTS) + (style.weight == Weight::Bold ? " Bold " : " ") +
                           std::to_string(style.size);
  const std::unique_ptr<char, void (*)(void*)> markup(g_markup_escape_text(text.c_str(), -1),
                                                      g_free);
  return VImage::text(markup.get(), VImage::option()->set("font", font.c_str())->set("dpi", DPI));
}

// Of a text of which nothing can be seen, such as blanks, a question mark's.
VImage VisibleLetters(const std::string& text, const TextStyle& style) {
  try {
    return Letters(text, style);
  } catch (const vips::VError&) {
    vips_error_clear();
    return Letters("?", style);
  }
}

VImage FittingLetters(std::string text, const TextStyle& style, int width) {
  VImage letters = VisibleLetters(text, style);
  while (letters.width() > width && text.size() > 1) {
    text.resize(TB_CutUTF8(text, text.size() - 1).size());
    letters = VisibleLetters(text + "…", style);
  }
  return letters;
}

} // namespace

SheetPage::SheetPage(int width, int height, PageColor color)
    : _width(width), _height(height), _pixels(static_cast<size_t>(width) * height * 3) {
  Fill({0, 0, width, height}, color);
}

void SheetPage::Fill(const Box& box, PageColor color) {
  for (int y = box.y; y < box.y + box.height; ++y)
    for (int x = box.x; x < box.x + box.width; ++x)
      std::copy_n(color.component, 3, _At(x, y));
}

void SheetPage::Place(const Box& box, const std::vector<uint8_t>& pixels) {
  const size_t length = static_cast<size_t>(box.width) * 3;
  for (int y = 0; y < box.height; ++y)
    std::copy_n(pixels.data() + static_cast<size_t>(y) * length, length, _At(box.x, box.y + y));
}

int SheetPage::Write(const Box& box, const std::string& text, const TextStyle& style, Align align) {
  const VImage letters = FittingLetters(Printable(text), style, box.width);
  const std::vector<uint8_t> coverage = DecodedPixels(letters);
  // A line of text takes some 1.2 times its size, and its image begins at its highest letter.
  const int left = align == Align::Left ? box.x : box.x + box.width - letters.width();
  const int top = box.y + (box.height - style.size * 6 / 5) / 2 + letters.yoffset();
  for (int y = 0; y < letters.height(); ++y) {
    for (int x = 0; x < letters.width(); ++x) {
      if (left + x < 0 || left + x >= _width || top + y < 0 || top + y >= _height)
        continue;
      const int share = coverage[static_cast<size_t>(y) * letters.width() + x];
      uint8_t* pixel = _At(left + x, top + y);
      for (int plane = 0; plane < 3; ++plane)
        pixel[plane] = static_cast<uint8_t>(
            (pixel[plane] * (255 - share) + style.color.component[plane] * share + 127) / 255);
    }
  }
  return letters.width();
}

} // namespace limn
