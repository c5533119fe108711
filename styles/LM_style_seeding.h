// Writing the bundled styles into a new user's library. Private to the styles.
#pragma once

#include <string>

struct LM_style_place;

// Writes every bundled style that was never written before. library: where the names written are
// remembered; styles: the style folder. A file of the same name stays as it is. Empty, or which
// style could not be written; it is tried again next time.
std::string LM_SeedStyles(const LM_style_place& library, const LM_style_place& styles);
