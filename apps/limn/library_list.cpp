// limn styles: what is in the user's style library.
#include "command_line.h"

#include "report.h"
#include "style_source.h"

#include "LM_gallery.h"
#include "LM_style_codec.h"
#include "LM_style_library.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace limn {
namespace {

bool IsSame(const LM_style& one, const LM_style& other) {
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  uint8_t otherBytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(one, bytes);
  return size == LM_EncodeStyle(other, otherBytes) && std::equal(bytes, bytes + size, otherBytes);
}

bool IsAsBundled(const LM_listed_style& listed) {
  LM_style bundled = {};
  return LM_BundledStyle(listed.name, bundled) && IsSame(listed.style, bundled);
}

void PrintAsJson(const LM_listed_style& listed) {
  const nlohmann::ordered_json line = {{"name", listed.name},
                                       {"origin", IsAsBundled(listed) ? "bundled" : "user"},
                                       {"lights", listed.style.lightsRead}};
  PrintLine(line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

struct StylesOptions {
  bool json = false;
};

// Prints the styles that can be used by their name, one a line, the default one first; files of the
// library that cannot be used are reported on standard error. In JSON: an object a line with name,
// origin ("bundled" when it is as the program brought it, else "user") and the number of lights.
ExitCode ListStyles(const StylesOptions& options) {
  const StyleLibrary& library = UseStyleLibrary();
  if (!library.trouble.empty())
    PrintProblem(library.trouble);
  for (const LM_listed_style& listed : AllStyles()) {
    if (!listed.loads)
      PrintProblem(std::string(listed.name).append(": ").append(listed.why));
    else if (options.json)
      PrintAsJson(listed);
    else
      PrintLine(Printable(listed.name));
  }
  return ExitCode::Done;
}

} // namespace

void AddStyles(CLI::App& app, Command& command) {
  auto [styles, options] =
      AddCommand(app, command, "styles", "List the styles of the library by name", ListStyles);
  styles.footer("The library is the folder of styles that the dialog saves to and reads.");
  styles.add_flag("--json", options.json,
                  "Print a line of JSON for each style: name, origin\n(bundled or user), number of "
                  "lights");
}

} // namespace limn
