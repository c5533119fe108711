// The desktop under the Toolbox, for programs and hosts.
#ifndef TOOLBOX_DESKTOP_H
#define TOOLBOX_DESKTOP_H

#include "CVFilterRecord.h"
#include "QDPorts.h"

// Makes the program a desktop program: creates the one application object of the process unless
// there is one already (it then lives until the program ends), and shows alerts and about boxes in
// windows from now on. argc and argv must live as long; options of the desktop are taken out of
// them. The environment's LIMN_SCALE (1 to 4, "1.5" too) forces the pixel ratio of every dialog.
// False when the process has no screen to show anything on.
TB_EXPORT bool TB_StartDesktop(int& argc, char** argv);
// Whether dialogs can be shown: an application object exists.
TB_EXPORT bool TB_HasDesktop();
// Runs the desktop's events for a moment, in long work that should still repaint: at most
// milliseconds, less when nothing is waiting.
TB_EXPORT void TB_RunEvents(int milliseconds);

// Draws a pixel map into the current port: the part `source` of it with its top-left at (column,
// row), one map pixel a unit, scaled smoothly to the screen's ratio. With a mask (version 1) each
// pixel is blended over the port by its mask byte. What a FilterRecord.showPixels has to do.
// Result: 0; paramErr when the map makes no sense (no pixels, strides that overlap, a mode other
// than grey (1) and RGB (3), more than 30000 pixels a side); memFullErr.
TB_EXPORT int16_t ShowPixelMap(const CVPixelMap* map, const CVRect32* source, int32_t row,
                               int32_t column);

// CVFilterRecord.colorPicker over the desktop's chooser: 0 picked, 1 not picked, paramErr.
TB_EXPORT int16_t TB_PickColor(CVColorRequest* request);

#endif
