#include "LM_style_bytes.h"

#include <string_view>

#include "LM_style_codec.h"
#include "LM_style_json.h"

namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xef\xbb\xbf";

bool IsJson(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos &&
         (text[first] == '{' || text[first] == BYTE_ORDER_MARK[0]);
}

} // namespace

bool LM_StyleFromBytes(const uint8_t* bytes, size_t size, LM_style& style, std::string& why,
                       LM_height_source* relief) {
  std::string_view text(reinterpret_cast<const char*>(bytes), size);
  if (!IsJson(text))
    return LM_DecodeStyle(bytes, size, style, why);
  if (text.starts_with(BYTE_ORDER_MARK))
    text.remove_prefix(BYTE_ORDER_MARK.size());
  return LM_StyleFromJson(text, style, why, relief);
}
