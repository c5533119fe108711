// Alerts and about boxes as windows of the desktop. Private to this layer.
#ifndef MESSAGE_WINDOWS_H
#define MESSAGE_WINDOWS_H

// Shows them so from now on.
void InstallMessageWindows();

#endif
