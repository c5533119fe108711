// What a photograph's XMP says of images that lie in its file beside it: the gain map that makes an
// HDR picture of it, a film. Only the photograph itself is lit and written, and a program that
// finds these tags without their images would brighten a picture that does not ask for it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace limn {

// An XMP packet without these tags.
struct TrimmedXmp {
  std::string packet; // all else of it, byte for byte; empty where it cannot be told apart
  std::string notice; // what is left out
};

// None when the packet says nothing of further images.
std::optional<TrimmedXmp> WithoutFurtherImages(std::string_view packet);

} // namespace limn
