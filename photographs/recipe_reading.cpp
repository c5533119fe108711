// A command that starts one process after the other can use libvips in none before them, so what it
// has to know of a picture first is read in a process that ends with it.
#include "recipe.h"

#include "failure.h"
#include "image_library.h"
#include "image_source.h"
#include "posix_file.h"

#include <cerrno>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace limn {
namespace {

std::string RecipeOfFile(const std::string& path) {
  const Complaints complaints;
  try {
    if (std::optional<std::string> json = RecipeIn(OpenImage(path)))
      return *json;
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::BadInput, path);
  }
  throw Failure(ExitCode::BadInput,
                path + ": holds no recipe to be lit by; limn apply --recipe writes one");
}

// The exit code of a failure as a letter, then its sentence; or the letter of Done and the text.
[[noreturn]] void Answer(int descriptor, const std::function<std::string()>& work) {
  ExitCode code = ExitCode::Done;
  std::string text;
  try {
    text = work();
  } catch (const Failure& failure) {
    code = failure.Code();
    text = failure.what();
  } catch (...) {
    code = ExitCode::NoMemory;
    text = "not enough memory";
  }
  static_cast<void>(WriteAll(descriptor, static_cast<char>('0' + static_cast<int>(code)) + text));
  _exit(0);
}

std::string InProcessOfItsOwn(const std::string& path, const std::function<std::string()>& work) {
  int ends[2];
  if (pipe(ends) != 0)
    throw Failure(ExitCode::Refused, path + ": " + SystemReason(errno));
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  const pid_t child = fork();
  if (child < 0)
    throw Failure(ExitCode::Refused, path + ": " + SystemReason(errno));
  if (child == 0)
    Answer(writing.Number(), work);
  writing = Descriptor();
  std::string answer;
  ReadPieces(reading.Number(), ExitCode::Refused, path,
             [&](std::string_view piece) { answer += piece; });
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  if (answer.empty())
    throw Failure(ExitCode::BadInput, path + ": reading it ended its process");
  if (answer[0] != '0')
    throw Failure(static_cast<ExitCode>(answer[0] - '0'), answer.substr(1));
  return answer.substr(1);
}

} // namespace

std::string ReadRecipe(const std::string& path) {
  if (IsImageLibraryStarted())
    return RecipeOfFile(path);
  return InProcessOfItsOwn(path, [&] {
    StartImageLibrary(1);
    return RecipeOfFile(path);
  });
}

} // namespace limn
