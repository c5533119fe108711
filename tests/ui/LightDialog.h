// A dialog with the items that lights, sliders and drawing procedures need, on settings with a
// picture to show; and the mouse to drag in it.
#pragma once

#include "LM_drawing_scopes.h"
#include "LM_mac_UI.h"
#include "ToolboxProbe.h"
#include "ToolboxScript.h"

#include <functional>
#include <ostream>
#include <vector>

// The number of its resource, and of a string list with the labels of a slider.
constexpr int16_t LIGHT_DIALOG = 950;
constexpr int16_t SLIDER_LABELS = 150;

// Colours of every unit square of a rectangle, in rows.
typedef std::vector<uint32_t> Pixels;
Pixels PixelsOf(const Rect& rect);
uint32_t PixelAt(int h, int v);
constexpr uint32_t RGB(unsigned red, unsigned green, unsigned blue) {
  return red << 16 | green << 8 | blue;
}

inline std::ostream& operator<<(std::ostream& out, const LM_vectori2& vector) {
  return out << "(" << vector.h << ", " << vector.v << ")";
}

class LightDialog {
public:
  LightDialog();
  ~LightDialog();
  LightDialog(const LightDialog&) = delete;
  LightDialog& operator=(const LightDialog&) = delete;

  // Sets up the first light, centred (h, v) from the middle of the preview, and selects it.
  LM_light_UI& UseLight(LM_light_type type, int16_t h = 0, int16_t v = 0);
  Rect Box(int16_t item) const { return LM_ItemGetBox(dialog, item); }
  Point Middle(int16_t item) const;
  Pixels Picture() const { return PixelsOf(dialog->portRect); }

  DialogPtr dialog = nullptr;
  LM_globals* globals = nullptr;
  FilterRecord record{};

private:
  std::vector<uint8_t> _frame;
};

// Starts a script that presses the button, calls `body` as the press arrives, and expects that the
// script has released the button when `body` returns.
void WithMouseDown(ToolboxScript& script, const std::function<void()>& body);
