#include "option_value.h"

#include "limn.h"

namespace limn {

void AddMaxPixels(CLI::App& command, uint64_t& maxPixels) {
  constexpr double MOST = double{LIMN_LONGEST_SIDE} * LIMN_LONGEST_SIDE;
  AddValue(command, "--max-pixels", maxPixels, "N",
           "Refuse images of more pixels, which may be made to fill\n"
           "the memory (default: 1000000000, and 250000000 of what\n"
           "has to be decoded whole)")
      ->check(CLI::Range(1.0, MOST));
}

} // namespace limn
