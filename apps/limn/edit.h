// limn edit: hands over to the program that has the dialog.
#pragma once

#include "failure.h"

namespace limn {

// Becomes limn-edit, which lies beside this program, with the arguments after the command's name
// ("edit", argv[1]). Returns only by throwing Failure(Refused).
[[noreturn]] void BecomeEdit(char** argv);

} // namespace limn
