// How the command fails: an exit code and one sentence.
#pragma once

#include <stdexcept>
#include <string>

namespace limn {

// What the shell is told. A batch ends with the highest code that any of its images had.
enum class ExitCode : int {
  Done = 0,
  Cancelled = 1,
  WrongUsage = 2,
  BadInput = 3,
  CannotWrite = 4,
  NoMemory = 5,
  Refused = 6, // by the plug-in, for any other reason
};

// Thrown where one image, or the whole command, cannot go on. The text is one sentence that names
// the file and what is wrong with it, without the program's name or a full stop.
class Failure : public std::runtime_error {
public:
  Failure(ExitCode code, const std::string& sentence) : std::runtime_error(sentence), _code(code) {}
  ExitCode Code() const { return _code; }

private:
  ExitCode _code;
};

} // namespace limn
