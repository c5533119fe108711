// QuickDraw: everything that draws. Drawing goes to the current port, at once, in the port's own
// coordinates; what a window's port holds reaches the screen whenever events are let run (the modal
// loops, StillDown, GetMouse, GetKeys).
#pragma once

#include "QDPictures.h"
#include "QDPorts.h"
#include "QDRegions.h"
#include "QDShapes.h"
#include "QDText.h"
