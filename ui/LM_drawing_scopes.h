// What a drawing procedure changes in a port and must put back: each of these does so at the end of
// its scope. Declare the port first, so that the others restore into it.
#pragma once

#include "LM_types.h"
#include "QuickDraw.h"

constexpr RGBColor LM_BLACK = {0, 0, 0};

// What all of them are.
class LM_not_copied {
protected:
  LM_not_copied() = default;
  LM_not_copied(const LM_not_copied&) = delete;
  LM_not_copied& operator=(const LM_not_copied&) = delete;
};

// Makes a port current.
class LM_port_scope : LM_not_copied {
public:
  explicit LM_port_scope(GrafPtr port) {
    GetPort(&_saved);
    SetPort(port);
  }
  ~LM_port_scope() { SetPort(_saved); }

private:
  GrafPtr _saved = nullptr;
};

// Starts with a normal pen. The pen's place is put back too.
class LM_pen_scope : LM_not_copied {
public:
  LM_pen_scope() {
    GetPenState(&_saved);
    PenNormal();
  }
  ~LM_pen_scope() { SetPenState(&_saved); }

private:
  PenState _saved;
};

// Clips to the part of a rectangle that was visible before. Without memory for regions nothing is
// clipped, and nothing is changed.
class LM_clip_scope : LM_not_copied {
public:
  explicit LM_clip_scope(const Rect& rect) : _saved(NewRgn()), _narrow(NewRgn()) {
    if (_saved == nullptr || _narrow == nullptr)
      return;
    GetClip(_saved);
    RectRgn(_narrow, &rect);
    SectRgn(_saved, _narrow, _narrow);
    Narrow();
  }
  ~LM_clip_scope() {
    Open();
    DisposeRgn(_narrow);
    DisposeRgn(_saved);
  }

  // Back to what was there before, and to the rectangle again.
  void Open() { _Use(_saved); }
  void Narrow() { _Use(_narrow); }

private:
  void _Use(RgnHandle region) {
    if (_saved != nullptr && _narrow != nullptr)
      SetClip(region);
  }
  RgnHandle _saved;
  RgnHandle _narrow;
};

// The font of small labels; ends with the plain full-sized one.
class LM_small_text_scope : LM_not_copied {
public:
  explicit LM_small_text_scope(short face = 0) {
    TextFont(1);
    TextSize(9);
    TextFace(face);
  }
  ~LM_small_text_scope() {
    TextFont(0);
    TextSize(0);
    TextFace(0);
  }
};

// A pattern of one colour; null when memory is short, which draws nothing.
class LM_color_pattern : LM_not_copied {
public:
  explicit LM_color_pattern(const RGBColor& color) : handle(NewPixPat()) {
    MakeRGBPat(handle, &color);
  }
  ~LM_color_pattern() { DisposePixPat(handle); }

  const PixPatHandle handle;
};

inline RGBColor LM_RGBOf(const LM_color48& color) {
  return {color.component[0], color.component[1], color.component[2]};
}
