// Where everything is on a contact sheet, in pixels.
#pragma once

namespace limn {

struct Box {
  int x, y, width, height;
};

struct SheetLayout {
  int columns, rows;
  int width, height; // of the sheet
  int margin;        // around everything
  int gap;           // between cards
  int padding;       // between a card's edge and what is on it
  Box card;          // the first one; the others follow at its distance
  int pictureWidth, pictureHeight;
  int labelHeight; // the strip below a picture
  int labelSize;   // of letters, in pixels
  int titleSize;
};

// For `numCards` pictures of that size. columns: 0 chooses them.
SheetLayout LayOutSheet(int numCards, int pictureWidth, int pictureHeight, int columns);

// Card number `index`, row by row.
Box CardBox(const SheetLayout& layout, int index);

} // namespace limn
