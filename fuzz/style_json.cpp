// The JSON form of a style: what it means survives writing it down again, and so does what a style
// file means.
#include "FuzzInput.h"

#include "LM_style_codec.h"
#include "LM_style_json.h"

#include <string>
#include <string_view>

namespace {

std::string FileForm(const LM_style& style) {
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(style, bytes);
  return {reinterpret_cast<const char*>(bytes), size};
}

void CheckRoundTrip(const LM_style& style) {
  const std::string written = LM_StyleToJson(style);
  LM_style again;
  std::string why;
  Check(LM_StyleFromJson(written, again, why), "what is written can be read");
  Check(FileForm(again) == FileForm(style), "reading gives what was written");
  Check(LM_StyleToJson(again) == written, "and is written in the same words");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  LM_style style;
  std::string why;
  if (LM_DecodeStyle(data, size, style, why))
    CheckRoundTrip(style);
  const bool reads = LM_StyleFromJson({reinterpret_cast<const char*>(data), size}, style, why);
  Check(reads || !why.empty(), "what does not read has a reason");
  if (reads)
    CheckRoundTrip(style);
  return 0;
}
