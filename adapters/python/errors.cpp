#include "errors.h"

namespace py = pybind11;

namespace {

// Kept for as long as the process, as other types of extensions are.
PyObject* BaseError;
PyObject* ArgumentError;
PyObject* StyleError;
PyObject* ReadError;
PyObject* NoMemoryError;

PyObject* Define(py::module_& module, const char* name, const char* explanation,
                 const py::handle& bases) {
  PyObject* const type = PyErr_NewExceptionWithDoc((std::string("limn.") + name).c_str(),
                                                   explanation, bases.ptr(), nullptr);
  if (type == nullptr)
    throw py::error_already_set();
  module.add_object(name, type);
  return type;
}

PyObject* DefineUnder(py::module_& module, const char* name, const char* explanation,
                      PyObject* python) {
  return Define(module, name, explanation,
                py::make_tuple(py::handle(BaseError), py::handle(python)));
}

PyObject* TypeOf(limn_result code) {
  switch (code) {
  case LIMN_BAD_ARGUMENT:
    return ArgumentError;
  case LIMN_BAD_STYLE:
    return StyleError;
  case LIMN_CANNOT_READ:
    return ReadError;
  case LIMN_NO_MEMORY:
    return NoMemoryError;
  default:
    return BaseError;
  }
}

} // namespace

void DefineErrors(py::module_& module) {
  BaseError = Define(module, "Error", "What the lighting could not do; the base of the others.",
                     py::handle(PyExc_Exception));
  ArgumentError = DefineUnder(module, "ArgumentError",
                              "An array, an area or a setting that cannot be.", PyExc_ValueError);
  StyleError = DefineUnder(module, "StyleError", "No style of that name, or bytes that are none.",
                           PyExc_ValueError);
  ReadError =
      DefineUnder(module, "ReadError", "A style's file that cannot be read.", PyExc_OSError);
  NoMemoryError =
      DefineUnder(module, "NoMemoryError", "The memory does not suffice.", PyExc_MemoryError);
}

void Throw(const limn_error& error) {
  PyErr_SetString(TypeOf(error.code), error.text);
  throw py::error_already_set();
}

void Refuse(const std::string& sentence) {
  PyErr_SetString(ArgumentError, sentence.c_str());
  throw py::error_already_set();
}
