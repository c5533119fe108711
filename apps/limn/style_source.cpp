#include "style_source.h"

#include "failure.h"
#include "posix_file.h"

#include "LM_gallery.h"
#include "LM_style_codec.h"
#include "LM_style_fields.h"
#include "LM_style_json.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <vector>

namespace limn {
namespace {

namespace fs = std::filesystem;

// Far above what sixteen lights need in JSON, far below what could hurt.
constexpr size_t LONGEST_STYLE_FILE = 1 << 20;

constexpr const char* DEFAULT_STYLE = "Default";

bool IsJson(const std::vector<uint8_t>& bytes) {
  const auto first = std::find_if(bytes.begin(), bytes.end(), [](uint8_t byte) {
    return byte != ' ' && byte != '\t' && byte != '\n' && byte != '\r';
  });
  // A byte order mark may stand before the text.
  return first != bytes.end() && (*first == '{' || *first == 0xef);
}

std::string_view TextOf(const std::vector<uint8_t>& bytes) {
  std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (text.starts_with("\xef\xbb\xbf"))
    text.remove_prefix(3);
  return text;
}

// The user's style folder, or an empty path when the environment names none.
fs::path StyleFolder() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && *data == '/')
    return fs::path(data) / "limn" / "styles";
  const char* home = std::getenv("HOME");
  return home != nullptr && *home == '/' ? fs::path(home) / ".local/share/limn/styles" : fs::path();
}

bool IsThere(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error) && !fs::is_directory(path, error);
}

} // namespace

NamedStyle ReadStyleFile(const std::string& path) {
  const std::vector<uint8_t> bytes = ReadSmallFile(path, LONGEST_STYLE_FILE);
  NamedStyle named{};
  const bool isRead = IsJson(bytes)
                          ? LM_StyleFromJson(TextOf(bytes), named.style, named.warning)
                          : LM_DecodeStyle(bytes.data(), bytes.size(), named.style, named.warning);
  if (!isRead)
    throw Failure(ExitCode::BadInput, path + ": " + named.warning);
  return named;
}

NamedStyle FindStyle(const std::string& name) {
  if (name.find('/') != std::string::npos || IsThere(name))
    return ReadStyleFile(name);
  const fs::path folder = StyleFolder();
  if (!name.empty() && !folder.empty() && IsThere(folder / name))
    return ReadStyleFile((folder / name).string());
  NamedStyle bundled{};
  const std::string wanted = name.empty() ? DEFAULT_STYLE : name;
  if (!LM_BundledStyle(wanted, bundled.style))
    throw Failure(ExitCode::BadInput, wanted + ": there is no such style, nor a file of this name");
  return bundled;
}

void SetField(LM_style& style, const std::string& setting) {
  const size_t equals = setting.find('=');
  if (equals == std::string::npos)
    throw Failure(ExitCode::WrongUsage, "--set " + setting + ": is not of the form KEY=VALUE");
  std::string why;
  const std::string_view text = setting;
  if (!LM_SetStyleField(style, text.substr(0, equals), text.substr(equals + 1), why))
    throw Failure(ExitCode::WrongUsage, "--set " + setting + ": " + why);
}

} // namespace limn
