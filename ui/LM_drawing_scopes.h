// What a drawing procedure changes in a port and must put back: each of these does so at the end of
// its scope. Declare the port first, so that the others restore into it.
#pragma once

#include "LM_types.h"
#include "QuickDraw.h"

constexpr RGBColor LM_BLACK = {0, 0, 0};

// Makes a port current.
class LM_port_scope {
public:
  explicit LM_port_scope(GrafPtr port) {
    GetPort(&_saved);
    SetPort(port);
  }
  ~LM_port_scope() { SetPort(_saved); }
  LM_port_scope(const LM_port_scope&) = delete;
  LM_port_scope& operator=(const LM_port_scope&) = delete;

private:
  GrafPtr _saved = nullptr;
};

// Starts with a normal pen. The pen's place is put back too.
class LM_pen_scope {
public:
  LM_pen_scope() {
    GetPenState(&_saved);
    PenNormal();
  }
  ~LM_pen_scope() { SetPenState(&_saved); }
  LM_pen_scope(const LM_pen_scope&) = delete;
  LM_pen_scope& operator=(const LM_pen_scope&) = delete;

private:
  PenState _saved;
};

// Clips to the part of a rectangle that was visible before. Without memory for regions nothing is
// clipped, and nothing is changed.
class LM_clip_scope {
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
  LM_clip_scope(const LM_clip_scope&) = delete;
  LM_clip_scope& operator=(const LM_clip_scope&) = delete;

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
class LM_small_text_scope {
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
  LM_small_text_scope(const LM_small_text_scope&) = delete;
  LM_small_text_scope& operator=(const LM_small_text_scope&) = delete;
};

// A pattern of one colour; null when memory is short, which draws nothing.
class LM_color_pattern {
public:
  explicit LM_color_pattern(const RGBColor& color) : handle(NewPixPat()) {
    MakeRGBPat(handle, &color);
  }
  ~LM_color_pattern() { DisposePixPat(handle); }
  LM_color_pattern(const LM_color_pattern&) = delete;
  LM_color_pattern& operator=(const LM_color_pattern&) = delete;

  const PixPatHandle handle;
};

inline RGBColor LM_RGBOf(const LM_color48& color) {
  return {color.component[0], color.component[1], color.component[2]};
}
