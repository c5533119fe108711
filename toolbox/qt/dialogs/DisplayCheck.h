// Whether there is a screen to open windows on. Private to this layer.
#pragma once

// Asked before the application object is made, which would end the process without a screen.
bool CanReachDisplay();
