#include "errors.h"

#include <algorithm>
#include <iterator>

namespace py = pybind11;

namespace {

// The exception of each code. Kept for as long as the process, as other types of extensions are.
PyObject* types[LIMN_FAILED + 1];

PyObject* Define(py::module_& module, const char* name, const char* explanation,
                 const py::handle& bases) {
  PyObject* const type = PyErr_NewExceptionWithDoc((std::string("limn.") + name).c_str(),
                                                   explanation, bases.ptr(), nullptr);
  if (type == nullptr)
    throw py::error_already_set();
  module.add_object(name, type);
  return type;
}

} // namespace

void DefineErrors(py::module_& module) {
  const py::handle base = Define(
      module, "Error", "What the lighting could not do; the base of the others.", PyExc_Exception);
  std::fill(std::begin(types), std::end(types), base.ptr());
  const auto define = [&](limn_result code, const char* name, const char* explanation,
                          const py::handle& python) {
    types[code] = Define(module, name, explanation, py::make_tuple(base, python));
  };
  define(LIMN_BAD_ARGUMENT, "ArgumentError", "An array, an area or a setting that cannot be.",
         PyExc_ValueError);
  define(LIMN_BAD_STYLE, "StyleError", "No style of that name, or bytes that are none.",
         PyExc_ValueError);
  define(LIMN_CANNOT_READ, "ReadError", "A style's file that cannot be read.", PyExc_OSError);
  define(LIMN_NO_MEMORY, "NoMemoryError", "The memory does not suffice.", PyExc_MemoryError);
}

void Throw(const limn_error& error) {
  PyErr_SetString(types[error.code], error.text);
  throw py::error_already_set();
}

void Refuse(const std::string& sentence) {
  PyErr_SetString(types[LIMN_BAD_ARGUMENT], sentence.c_str());
  throw py::error_already_set();
}
