#include "library_list.h"

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

} // namespace

ExitCode ListStyles(ListForm form) {
  const StyleLibrary& library = UseStyleLibrary();
  if (!library.trouble.empty())
    PrintProblem(library.trouble);
  for (const LM_listed_style& listed : AllStyles()) {
    if (!listed.loads)
      PrintProblem(std::string(listed.name).append(": ").append(listed.why));
    else if (form == ListForm::Json)
      PrintAsJson(listed);
    else
      PrintLine(Printable(listed.name));
  }
  return ExitCode::Done;
}

} // namespace limn
