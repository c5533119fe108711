// Whether there is a screen to open windows on. Private to this layer.
#ifndef DISPLAY_CHECK_H
#define DISPLAY_CHECK_H

// Asked before the application object is made, which would end the process without a screen.
bool CanReachDisplay();

#endif
