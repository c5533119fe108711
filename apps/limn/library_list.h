// limn styles: what is in the user's style library.
#pragma once

#include "failure.h"

namespace limn {

enum class ListForm { Names, Json };

// Prints the styles that can be used by their name, one a line, the default one first; files of the
// library that cannot be used are reported on standard error. Json: an object a line with name,
// origin
// ("bundled" when it is as the program brought it, else "user") and the number of lights.
ExitCode ListStyles(ListForm form);

} // namespace limn
