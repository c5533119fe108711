// Alerts and about boxes as windows of the desktop. Private to this layer.
#pragma once

// Shows them so from now on.
void InstallMessageWindows();
