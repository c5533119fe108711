// How the commands declare options that take a value.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace limn {

// Adds an option with a value, which the help calls `type`. One whose values make a list takes one
// value each time that it is given.
template <class Value>
CLI::Option* AddValue(CLI::App& command, const char* names, Value& value, const char* type,
                      const std::string& text) {
  CLI::Option* const option = command.add_option(names, value, text)->type_name(type);
  if constexpr (std::is_same_v<Value, std::vector<std::string>>)
    option->allow_extra_args(false);
  return option;
}

// --max-pixels, the same in every command that reads photographs. maxPixels: as SizeLimit's; it
// must outlive the parsing.
void AddMaxPixels(CLI::App& command, uint64_t& maxPixels);

} // namespace limn
