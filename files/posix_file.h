// Files opened with care: what is named may be a pipe, a device or a folder, and may change
// meanwhile.
#pragma once

#include "failure.h"

#include <cerrno>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace limn {

// Owns a file descriptor; -1 for none.
class Descriptor {
public:
  explicit Descriptor(int number = -1) : _number(number) {}
  Descriptor(Descriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(_number, other._number);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  int Number() const { return _number; }

private:
  int _number;
};

// Repeats a call of the system that a signal interrupts.
template <class Call> auto Uninterrupted(Call call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR)
      return result;
  }
}

// Opens a regular file for reading. Never blocks on a pipe and never opens a device for use.
// Throws Failure(BadInput).
Descriptor OpenRegularFile(const std::string& path);

// A file for reading and writing that has no name and goes with its last descriptor. Throws
// Failure(CannotWrite).
Descriptor OpenUnnamedFile();

// Gives what is left of an open file, which may be a pipe, piece by piece. Throws Failure(code)
// about `name`.
void ReadPieces(int from, ExitCode code, const std::string& name,
                const std::function<void(std::string_view)>& take);

// False, with errno, when not all can be written.
bool WriteAll(int to, std::string_view bytes);

// Copies what is left of one open file to another. Throws Failure(code) about `name`.
void CopyFile(int from, int to, ExitCode code, const std::string& name);

// Lets no file that is opened later become standard input, output or error because the caller
// closed these: there, what is printed would go into it. Reading and writing the closed ones fails
// as before. Call it before anything is opened. False when that cannot be had.
bool HoldStandardFiles();

// The system's words for `error`, in the middle of a sentence ("no such file or directory").
std::string SystemReason(int error);

} // namespace limn
