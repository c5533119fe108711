// The desktop under the Toolbox, for programs and hosts.
#pragma once

#include "PixelMaps.h"
#include "QDPorts.h"

// Makes the program a desktop program: creates the one application object of the process unless
// there is one already (it then lives until the program ends), and shows alerts and about boxes in
// windows from now on. argc and argv must live as long; options of the desktop are taken out of
// them. The environment's LIMN_SCALE (1 to 4, "1.5" too) forces the pixel ratio of every dialog.
// False when the process has no screen to show anything on.
TB_EXPORT bool TB_StartDesktop(int& argc, char** argv);
