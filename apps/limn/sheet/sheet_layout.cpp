#include "sheet_layout.h"

#include <algorithm>
#include <cmath>

namespace limn {
namespace {

constexpr double WANTED_SHAPE = 1.5; // width to height
constexpr double COST_OF_A_HOLE = 0.05;

SheetLayout WithColumns(int numCards, Extent picture, Extent detail, int columns) {
  SheetLayout layout = {};
  layout.columns = columns;
  layout.rows = (numCards + columns - 1) / columns;
  layout.labelSize = std::clamp(std::max(picture.width, picture.height) / 17, 10, 20);
  layout.titleSize = layout.labelSize * 8 / 5;
  layout.labelHeight = layout.labelSize * 21 / 10;
  layout.padding = layout.labelSize * 2 / 3;
  layout.gap = layout.labelSize;
  layout.margin = layout.labelSize * 5 / 2;
  const int top = 2 * layout.margin + layout.titleSize;
  const int left = layout.margin + layout.padding;
  layout.picture = {left, top + layout.padding, picture.width, picture.height};
  layout.detail = {left, top + layout.padding, detail.width, detail.height};
  int width = std::max(picture.width, detail.width);
  int height = std::max(picture.height, detail.height);
  if (detail.width > 0 && picture.width >= picture.height) {
    layout.detail.y += picture.height + layout.padding;
    height = picture.height + layout.padding + detail.height;
  } else if (detail.width > 0) {
    layout.detail.x += picture.width + layout.padding;
    width = picture.width + layout.padding + detail.width;
  }
  layout.card = {layout.margin, top, width + 2 * layout.padding,
                 height + layout.padding + layout.labelHeight};
  layout.width = 2 * layout.margin + columns * (layout.card.width + layout.gap) - layout.gap;
  layout.height =
      top + layout.rows * (layout.card.height + layout.gap) - layout.gap + layout.margin;
  return layout;
}

// How far a layout is from a page without holes in the wanted shape.
double Cost(const SheetLayout& layout, int numCards) {
  const double shape = static_cast<double>(layout.width) / layout.height;
  return std::abs(std::log(shape / WANTED_SHAPE)) +
         COST_OF_A_HOLE * (layout.columns * layout.rows - numCards);
}

} // namespace

SheetLayout LayOutSheet(int numCards, Extent picture, Extent detail, int columns) {
  if (columns > 0)
    return WithColumns(numCards, picture, detail, std::min(columns, numCards));
  SheetLayout best = WithColumns(numCards, picture, detail, 1);
  for (int tried = 2; tried <= std::min(numCards, 24); ++tried) {
    const SheetLayout layout = WithColumns(numCards, picture, detail, tried);
    if (Cost(layout, numCards) < Cost(best, numCards))
      best = layout;
  }
  return best;
}

Box OnCard(const SheetLayout& layout, Box box, int index) {
  box.x += index % layout.columns * (layout.card.width + layout.gap);
  box.y += index / layout.columns * (layout.card.height + layout.gap);
  return box;
}

} // namespace limn
