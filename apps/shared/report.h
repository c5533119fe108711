// What the command prints about its work: failures and notices on standard error, results on
// standard output.
#pragma once

#include "failure.h"

#include <functional>
#include <string>
#include <string_view>

namespace limn {

// Text that may hold a stranger's file name, safe for a terminal: control characters and bytes that
// are not UTF-8 become question marks.
std::string Printable(std::string_view text);

// "limn: SENTENCE" and a line end on standard error.
void PrintProblem(const std::string& sentence);

// On standard output, as it is or with a line end.
void PrintText(const std::string& text);
void PrintLine(const std::string& line);

// Flushes standard output. A full disk or a closed pipe behind it turns `code` into CannotWrite.
// After Cancelled nobody is waited for: where output cannot be written at once, the process ends
// here.
ExitCode FlushedOutput(ExitCode code);

// Whether something can be written to the descriptor now, without waiting for whoever reads it.
bool CanPrint(int descriptor);

// What main ends with: keeps what is printed out of other files, should the caller have closed the
// standard ones, runs the program, and prints whatever it throws as a problem.
int ReportedExit(const std::function<ExitCode()>& run);

} // namespace limn
