// The option --max-pixels, the same in every command that reads photographs.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>

namespace limn {

// maxPixels: as SizeLimit's; it must outlive the parsing.
void AddMaxPixels(CLI::App& command, uint64_t& maxPixels);

} // namespace limn
