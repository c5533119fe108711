// The extension module of the package `limn`: the C library's calls, for what limn/__init__.py
// makes of them.
#include "arrays.h"
#include "errors.h"
#include "heights.h"
#include "settings.h"

#include <array>
#include <chrono>
#include <optional>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

using Area = std::array<int64_t, 4>; // x, y, width, height

// Lets Ctrl+C, and whatever other signal has a Python function, end a long call. The lock is taken
// for that now and then only, since another thread may hold it for long.
class Signals {
public:
  static int Check(double, void* user) { return static_cast<Signals*>(user)->_HasEnded() ? 1 : 0; }
  bool HasEnded() const { return _hasEnded; }

private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds PAUSE{100};

  bool _HasEnded() {
    const Clock::time_point now = Clock::now();
    if (now - _last < PAUSE)
      return _hasEnded;
    _last = now;
    const py::gil_scoped_acquire lock;
    _hasEnded = PyErr_CheckSignals() != 0;
    return _hasEnded;
  }

  Clock::time_point _last = Clock::now();
  bool _hasEnded = false;
};

limn_area AreaOf(const Area& area) {
  for (const int64_t number : area)
    if (number < 0 || number > LIMN_LONGEST_SIDE)
      Refuse("area: " + std::to_string(number) + " is not between 0 and " +
             std::to_string(LIMN_LONGEST_SIDE));
  if (area[2] == 0 || area[3] == 0) // which would stand for everything
    Refuse("area: it is empty");
  return {static_cast<int32_t>(area[0]), static_cast<int32_t>(area[1]),
          static_cast<int32_t>(area[2]), static_cast<int32_t>(area[3])};
}

py::array Light(const py::array& image, const Settings& settings,
                const std::optional<py::array>& relief, const std::optional<Area>& area,
                int threads, const std::optional<py::array>& out) {
  Arrays arrays(image, relief, out);
  if (area)
    arrays.picture.area = AreaOf(*area);
  const auto shared = settings.Shared();
  Signals signals;
  const limn_options options = {threads, Signals::Check, &signals};
  limn_error error;
  {
    const py::gil_scoped_release others;
    limn_light(shared.get(), &arrays.picture, &options, &error);
  }
  if (signals.HasEnded())
    throw py::error_already_set();
  if (error.code != LIMN_OK)
    Throw(error);
  return arrays.Result();
}

} // namespace

PYBIND11_MODULE(_limn, module) {
  DefineErrors(module);
  py::class_<Settings>(module, "Settings")
      .def(py::init(&Settings::New))
      .def_static("load", [](const py::bytes& path) { return Settings::Load(path); })
      .def_static("from_memory", [](const py::bytes& bytes) { return Settings::FromMemory(bytes); })
      .def_static("bundled", &Settings::Bundled)
      .def("copy", [](const Settings& settings) { return settings; })
      .def("set", &Settings::Set)
      .def("json", &Settings::Json)
      .def_property_readonly("warning", &Settings::Warning);
  module.def("light", &Light, py::arg("image").noconvert(), py::arg("settings"),
             py::arg("relief").noconvert(), py::arg("area"), py::arg("threads"),
             py::arg("out").noconvert());
  module.def(
      "heights",
      [](const py::array& image, const std::string& kind, int channel, int smoothing, int detail,
         bool fit, bool invert) {
        const LM_height_kind known = kind == "auto"        ? LM_height_kind::Auto
                                     : kind == "luminance" ? LM_height_kind::Luminance
                                                           : LM_height_kind::Channel;
        return Heights(image, {known, channel, "", smoothing, detail, fit, invert});
      },
      py::arg("image").noconvert(), py::arg("kind"), py::arg("channel"), py::arg("smoothing"),
      py::arg("detail"), py::arg("fit"), py::arg("invert"));
  module.def("style_names", &StyleNames);
  module.def("version", &limn_version);
}
