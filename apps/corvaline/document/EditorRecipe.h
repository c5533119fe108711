// How the picture is lit: all but its pixels.
#pragma once

#include "LM_height_source.h"
#include "LM_style.h"

#include <QImage>
#include <QRect>

#include <memory>
#include <optional>

struct foo;

namespace editor {

// Plain data, of a few hundred bytes.
struct Recipe {
  std::optional<LM_style> lights; // in the world unit of the editor's pictures, WORLD_UNIT
  // A plug-in's parameters that no style makes, or null: these light instead.
  std::shared_ptr<const foo> block;
  LM_height_source relief; // not resolved

  bool isLit() const { return lights.has_value() || block != nullptr; }
};

// Half the width of the frame that lengths of a picture's lights are measured in.
constexpr int16_t WORLD_UNIT = 140;

// The style in that unit, without lights that it does not hold whole.
LM_style InWorldUnit(LM_style style);

// What is lit, and what a filter works on. area: in image pixels; empty means the whole image.
// mask: 8-bit grey, as large as the image, 255 fully selected; null means that everything is
// selected.
struct Selection {
  QRect area;
  QImage mask;
  bool operator==(const Selection& other) const {
    return area == other.area && mask.cacheKey() == other.mask.cacheKey();
  }
};

} // namespace editor
