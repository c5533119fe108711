// How work fails: a code and one sentence.
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

// Thrown where one image, one call or the whole command cannot go on. The text is one sentence that
// names the file and what is wrong with it, without the program's name or a full stop.
template <class FailureCode> class CodedFailure : public std::runtime_error {
public:
  CodedFailure(FailureCode code, const std::string& sentence)
      : std::runtime_error(sentence), _code(code) {}
  FailureCode Code() const { return _code; }

private:
  FailureCode _code;
};

using Failure = CodedFailure<ExitCode>;

// In a catch block: what is being handled, as a Failure. Short memory is NoMemory; what else is no
// Failure was not foreseen, and is Refused. file: named where the exception does not name one.
Failure CaughtFailure(const std::string& file = "");

} // namespace limn
