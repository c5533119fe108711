#include "job_message.h"

#include "posix_file.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <sys/socket.h>

namespace limn {

void JobMessage::SetText(const std::string& content) {
  length = static_cast<uint32_t>(std::min(content.size(), sizeof text));
  std::memcpy(text, content.data(), length);
}

bool Send(int socket, const JobMessage& message) {
  const size_t size = offsetof(JobMessage, text) + message.length;
  return Uninterrupted([&] { return send(socket, &message, size, MSG_NOSIGNAL); }) ==
         static_cast<ssize_t>(size);
}

Received Receive(int socket, JobMessage& message, Waits waits) {
  const ssize_t header = offsetof(JobMessage, text);
  const ssize_t got = Uninterrupted([&] {
    return recv(socket, &message, sizeof message, waits == Waits::No ? MSG_DONTWAIT : 0);
  });
  if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
    return Received::Nothing;
  if (got < header || message.length > static_cast<size_t>(got - header))
    return Received::End;
  return Received::Message;
}

} // namespace limn
