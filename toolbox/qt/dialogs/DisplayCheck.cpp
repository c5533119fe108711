#include "DisplayCheck.h"

#include <QByteArray>
#include <cstddef>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

bool Connects(const std::string& path, bool abstract) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const size_t shift = abstract ? 1 : 0;
  if (path.size() + shift >= sizeof address.sun_path)
    return false;
  std::memcpy(address.sun_path + shift, path.data(), path.size());
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + shift + path.size());
  const int handle = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (handle < 0)
    return false;
  const bool connected = connect(handle, reinterpret_cast<sockaddr*>(&address), length) == 0;
  close(handle);
  return connected;
}

// A display ":1.0" of this machine. Others are taken at their word.
bool ReachesX(const std::string& display) {
  const size_t colon = display.rfind(':');
  if (colon == std::string::npos)
    return false;
  if (colon != 0 && display.compare(0, colon, "unix") != 0)
    return true;
  const std::string number = display.substr(colon + 1, display.find('.', colon) - colon - 1);
  const std::string path = "/tmp/.X11-unix/X" + number;
  return Connects(path, true) || Connects(path, false);
}

} // namespace

bool CanReachDisplay() {
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  if (!platform.isEmpty() && !platform.startsWith("xcb"))
    return true;
  if (platform.isEmpty() && !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
    return true;
  return ReachesX(qgetenv("DISPLAY").toStdString());
}
