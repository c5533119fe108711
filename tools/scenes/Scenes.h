// The pictures.
#pragma once

#include "Picture.h"
#include "Renderer.h"

namespace scenes {

// Lengths are in hands (10 cm).
Scene StillLife();
Scene Portrait();
Scene OldWall();
Scene Landscape();
// On these no figure is tuned: what is told of the quality of heights is measured on them too.
Scene Plaque();
Scene Pebbles();
// A drawing, not a rendering; 1200 by 800.
Bytes LineArt();

} // namespace scenes
