#include "posix_file.h"

#include <cctype>
#include <fcntl.h>
#include <filesystem>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace limn {

Descriptor::~Descriptor() {
  if (_number >= 0)
    close(_number);
}

std::string SystemReason(int error) {
  std::string reason = std::generic_category().message(error);
  if (reason.size() > 1 && std::islower(static_cast<unsigned char>(reason[1])) != 0)
    reason[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(reason[0])));
  return reason;
}

Descriptor OpenRegularFile(const std::string& path) {
  // Without O_NONBLOCK the open itself would wait for the other end of a pipe.
  Descriptor file(Uninterrupted(
      [&] { return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }));
  if (file.Number() < 0)
    throw Failure(ExitCode::BadInput, path + ": " + SystemReason(errno));
  struct stat status {};
  if (fstat(file.Number(), &status) != 0)
    throw Failure(ExitCode::BadInput, path + ": " + SystemReason(errno));
  if (S_ISDIR(status.st_mode))
    throw Failure(ExitCode::BadInput, path + ": is a folder, not a file");
  if (!S_ISREG(status.st_mode))
    throw Failure(ExitCode::BadInput, path + ": is not a regular file");
  return file;
}

Descriptor OpenUnnamedFile() {
  std::error_code none;
  const std::string folder = std::filesystem::temp_directory_path(none).string();
  Descriptor file(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
  if (file.Number() < 0) // a file system without such files
    file = Descriptor(memfd_create("limn", MFD_CLOEXEC));
  if (file.Number() < 0)
    throw Failure(ExitCode::CannotWrite, folder + ": " + SystemReason(errno));
  return file;
}

void ReadPieces(int from, ExitCode code, const std::string& name,
                const std::function<void(std::string_view)>& take) {
  std::vector<char> piece(64 << 10);
  for (;;) {
    const ssize_t got = Uninterrupted([&] { return read(from, piece.data(), piece.size()); });
    if (got < 0)
      throw Failure(code, name + ": " + SystemReason(errno));
    if (got == 0)
      return;
    take({piece.data(), static_cast<size_t>(got)});
  }
}

bool WriteAll(int to, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = Uninterrupted([&] { return write(to, bytes.data(), bytes.size()); });
    if (written <= 0) {
      errno = written < 0 ? errno : EIO;
      return false;
    }
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

void CopyFile(int from, int to, ExitCode code, const std::string& name) {
  ReadPieces(from, code, name, [&](std::string_view piece) {
    if (!WriteAll(to, piece))
      throw Failure(code, name + ": " + SystemReason(errno));
  });
}

bool HoldStandardFiles() {
  for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(number, F_GETFD) >= 0)
      continue;
    // The lowest number that is free. Opened the wrong way round, and kept by every new program.
    const int opened = open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    if (opened != number)
      return false;
  }
  return true;
}

} // namespace limn
