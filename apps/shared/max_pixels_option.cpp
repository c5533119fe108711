#include "max_pixels_option.h"

#include "limn.h"

namespace limn {

void AddMaxPixels(CLI::App& command, uint64_t& maxPixels) {
  constexpr double MOST = double{LIMN_LONGEST_SIDE} * LIMN_LONGEST_SIDE;
  command
      .add_option("--max-pixels", maxPixels,
                  "Refuse images of more pixels, which may be made to fill\n"
                  "the memory (default: 1000000000, and 250000000 of what\n"
                  "has to be decoded whole)")
      ->type_name("N")
      ->check(CLI::Range(1.0, MOST));
}

} // namespace limn
