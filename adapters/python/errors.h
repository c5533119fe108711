// The exceptions of the package.
#pragma once

#include <limn.h>
#include <pybind11/pybind11.h>
#include <string>

// Adds them to the module. Before anything else is called.
void DefineErrors(pybind11::module_& module);

// Throws what the error says.
[[noreturn]] void Throw(const limn_error& error);

// Throws an ArgumentError with this sentence.
[[noreturn]] void Refuse(const std::string& sentence);
