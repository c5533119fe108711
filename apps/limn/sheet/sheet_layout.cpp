#include "sheet_layout.h"

#include <algorithm>
#include <cmath>

namespace limn {
namespace {

constexpr double WANTED_SHAPE = 1.5; // width to height
constexpr double COST_OF_A_HOLE = 0.05;

SheetLayout WithColumns(int numCards, int pictureWidth, int pictureHeight, int columns) {
  SheetLayout layout = {};
  layout.columns = columns;
  layout.rows = (numCards + columns - 1) / columns;
  layout.pictureWidth = pictureWidth;
  layout.pictureHeight = pictureHeight;
  layout.labelSize = std::clamp(std::max(pictureWidth, pictureHeight) / 17, 10, 20);
  layout.titleSize = layout.labelSize * 8 / 5;
  layout.labelHeight = layout.labelSize * 21 / 10;
  layout.padding = layout.labelSize * 2 / 3;
  layout.gap = layout.labelSize;
  layout.margin = layout.labelSize * 5 / 2;
  const int top = 2 * layout.margin + layout.titleSize;
  layout.card = {layout.margin, top, pictureWidth + 2 * layout.padding,
                 pictureHeight + layout.padding + layout.labelHeight};
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

SheetLayout LayOutSheet(int numCards, int pictureWidth, int pictureHeight, int columns) {
  if (columns > 0)
    return WithColumns(numCards, pictureWidth, pictureHeight, std::min(columns, numCards));
  SheetLayout best = WithColumns(numCards, pictureWidth, pictureHeight, 1);
  for (int tried = 2; tried <= std::min(numCards, 24); ++tried) {
    const SheetLayout layout = WithColumns(numCards, pictureWidth, pictureHeight, tried);
    if (Cost(layout, numCards) < Cost(best, numCards))
      best = layout;
  }
  return best;
}

Box CardBox(const SheetLayout& layout, int index) {
  Box box = layout.card;
  box.x += index % layout.columns * (box.width + layout.gap);
  box.y += index / layout.columns * (box.height + layout.gap);
  return box;
}

} // namespace limn
