// A file carried inside a program or a plug-in.
#pragma once

#include <cstddef>

// path: relative, with '/', such as "en/strings.json". bytes and path live as long as the binary
// that carries them.
struct TB_EmbeddedFile {
  const char* path;
  const unsigned char* bytes;
  size_t size;
};
