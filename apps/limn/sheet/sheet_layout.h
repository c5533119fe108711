// Where everything is on a contact sheet, in pixels.
#pragma once

namespace limn {

struct Box {
  int x, y, width, height;
};

struct Extent {
  int width, height;
};

struct SheetLayout {
  int columns, rows;
  int width, height; // of the sheet
  int margin;        // around everything
  int gap;           // between cards
  int padding;       // between a card's edge and what is on it
  Box card;          // the first one; the others follow at its distance
  Box picture;       // on the first card
  Box detail;        // the piece below it or beside it; empty: there is none
  int labelHeight;   // the strip below them
  int labelSize;     // of letters, in pixels
  int titleSize;
};

// For `numCards` pictures and pieces of these sizes. columns: 0 chooses them.
SheetLayout LayOutSheet(int numCards, Extent picture, Extent detail, int columns);

// What is at `box` on the first card, on card number `index`, row by row.
Box OnCard(const SheetLayout& layout, Box box, int index);

} // namespace limn
