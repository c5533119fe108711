// The things that the still life is made of. Lengths are in hands (10 cm), y is up.
#pragma once

#include "Renderer.h"

namespace scenes {

// An upright wall through `place`, of old plaster.
Shape Wall(Vec3 place);

// A table of old boards, whose upper front edge runs along x through `place`.
Shape Table(Vec3 place);

// A stoneware jug dipped in a green glaze, standing on `place`, its handle towards x.
Shape Jug(Vec3 place, Rotation turn);

// Rests on its lower side when placed about a third above the ground. `blush` above 0 is redder;
// each seed is another apple.
Shape Apple(Vec3 place, Rotation turn, float blush, float seed);
Shape Pear(Vec3 place, Rotation turn);
Shape Walnut(Vec3 place, Rotation turn);

// A slab of weathered limestone with a rosette cut into its face. Its middle is at `place`.
Shape CarvedStone(Vec3 place, Rotation turn);

// A linen cloth on a table whose upper front edge runs along x through `place`; it hangs over it.
Shape Linen(Vec3 place);

} // namespace scenes
