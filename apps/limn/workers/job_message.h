// What the command and its worker processes tell each other, over a socket that keeps messages
// apart. Both ends are the same program.
#pragma once

#include "worker_pool.h"

#include <cstdint>
#include <string>

namespace limn {

struct JobMessage {
  enum class Kind : uint32_t { Start, Progress, Notice, Result };
  Kind kind = Kind::Start;
  ExitCode code = ExitCode::Done;
  uint64_t job = 0;    // of a Start
  double share = 0;    // of a Progress
  double seconds = 0;  // of a Result with ExitCode::Done
  JobDone done;        // likewise
  uint32_t length = 0; // of the text
  char text[4000] = {};

  // Cuts a text that is too long.
  void SetText(const std::string& content);
};

// False when the other end is gone.
bool Send(int socket, const JobMessage& message);

enum class Received { Message, Nothing, End };

// Nothing: none is there, and `waits` is No.
enum class Waits { No, Yes };
Received Receive(int socket, JobMessage& message, Waits waits);

} // namespace limn
