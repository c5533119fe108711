#include "name_list.h"

#include "failure.h"
#include "posix_file.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace limn {
namespace {

// Takes the list piece by piece, so that an endless line is found out early.
class NameReader {
public:
  NameReader(std::string list, char end) : _list(std::move(list)), _end(end) {}

  void Take(std::string_view piece) {
    while (!piece.empty()) {
      const size_t length = std::min(piece.find(_end), piece.size());
      _Append(piece.substr(0, length));
      if (length < piece.size())
        Finish();
      piece.remove_prefix(std::min(length + 1, piece.size()));
    }
  }
  void Finish() {
    if (!_name.empty())
      _names.push_back(std::move(_name));
    _name.clear();
    ++_number;
  }
  std::vector<std::string> Names() { return std::move(_names); }

private:
  void _Append(std::string_view part) {
    _name += part;
    if (_name.size() >= PATH_MAX)
      _Fail("is longer than a file's name can be");
    if (part.find('\0') != std::string_view::npos)
      _Fail("holds a NUL byte; --null reads lists of names that end in one");
  }
  [[noreturn]] void _Fail(const char* what) const {
    throw Failure(ExitCode::BadInput, _list + ": name " + std::to_string(_number) + " " + what);
  }

  std::string _list;
  char _end;
  std::string _name;
  size_t _number = 1;
  std::vector<std::string> _names;
};

} // namespace

std::vector<std::string> ReadNameList(const std::string& path, char end) {
  const bool isStandardInput = path == "-";
  const std::string list = isStandardInput ? "standard input" : path;
  const Descriptor opened(isStandardInput ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!isStandardInput && opened.Number() < 0)
    throw Failure(ExitCode::BadInput, list + ": " + SystemReason(errno));
  NameReader reader(list, end);
  char piece[16384];
  const int input = isStandardInput ? STDIN_FILENO : opened.Number();
  while (const ssize_t got = Uninterrupted([&] { return read(input, piece, sizeof piece); })) {
    if (got < 0)
      throw Failure(ExitCode::BadInput, list + ": " + SystemReason(errno));
    reader.Take({piece, static_cast<size_t>(got)});
  }
  reader.Finish();
  return reader.Names();
}

} // namespace limn
