// Records behind handles. Private to this layer.
#pragma once

#include <new>

// A handle's master pointer and what it points to, in one: a record, of which callers see the
// `Shown` part.
template <typename Shown, typename Record = Shown> struct HandleBlock {
  Shown* master;
  Record record;

  // The handle of a new block, null when memory is short.
  static Shown** New() {
    auto* block = new (std::nothrow) HandleBlock{};
    if (block == nullptr)
      return nullptr;
    block->master = &block->record;
    return &block->master;
  }
  static void Dispose(Shown** handle) { delete reinterpret_cast<HandleBlock*>(handle); }
};
