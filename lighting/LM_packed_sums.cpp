#include "LM_packed_sums.h"

#include <new>
#include <utility>

namespace {

size_t PacksInRow(const LM_rect& rect) {
  return (static_cast<size_t>(rect.right - rect.left) + LM_PACKED_PIXELS - 1) / LM_PACKED_PIXELS;
}
size_t PacksIn(const LM_rect& rect) {
  return PacksInRow(rect) * static_cast<size_t>(rect.bottom - rect.top);
}

} // namespace

uint64_t LM_packed_sums::Bytes(const LM_rect& rect, int facets) {
  const uint64_t sums = uint64_t{LM_PACKED_PIXELS * LM_KEPT_SUMS} * static_cast<uint64_t>(facets);
  return PacksIn(rect) * (sizeof(LM_pack) + sums * 2 * sizeof(uint16_t));
}

bool LM_packed_sums::Start(const LM_rect& rect, int facets) {
  *this = {};
  if (Bytes(rect, facets) > PTRDIFF_MAX)
    return false;
  const size_t packs = PacksIn(rect);
  const size_t samples = packs * static_cast<size_t>(LM_PACKED_PIXELS * facets);
  LM_packed_sums made;
  made._facets = facets;
  made._packsInRow = PacksInRow(rect);
  made._packs.reset(new (std::nothrow) LM_pack[packs]);
  bool isWhole = made._packs != nullptr;
  for (int part = 0; part < 2 && isWhole; ++part) {
    for (auto* halves : {&made._low[part], &made._high[part]}) {
      halves->reset(new (std::nothrow) uint16_t[samples * LM_PACKED_SUMS[part]]);
      isWhole = isWhole && *halves != nullptr;
    }
  }
  if (isWhole)
    *this = std::move(made);
  return isWhole;
}

LM_packed_run LM_packed_sums::At(int32_t column, int32_t row) const {
  const size_t pack =
      static_cast<size_t>(row) * _packsInRow + static_cast<size_t>(column / LM_PACKED_PIXELS);
  const LM_packed_run first = {
      _packs.get(), {_low[0].get(), _low[1].get()}, {_high[0].get(), _high[1].get()}};
  return first.From(pack, _facets);
}
