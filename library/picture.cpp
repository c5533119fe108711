#include "picture.h"

#include "guard.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace limn {
namespace {

[[noreturn]] void Refuse(const std::string& text) {
  throw CallFailure{LIMN_BAD_ARGUMENT, text};
}

void NeedRange(const char* name, int32_t value, int32_t low, int32_t high) {
  if (value < low || value > high)
    Refuse(std::string(name) + ": " + std::to_string(value) + " is not between " +
           std::to_string(low) + " and " + std::to_string(high));
}

// A side of at most LIMN_LONGEST_SIDE times this is far from any overflow, twice over.
void NeedReach(const char* name, ptrdiff_t step, int32_t count) {
  const ptrdiff_t most = PTRDIFF_MAX / 2 / std::max(count - 1, 1);
  if (step > most || step < -most)
    Refuse(std::string(name) + ": " + std::to_string(step) + " bytes reach beyond all memory");
}

// The field is read as a number, since a caller may have left any there.
LM_pixel_kind KindOf(const char* name, const limn_kind& field) {
  int32_t number = 0;
  static_assert(sizeof number == sizeof field);
  std::memcpy(&number, &field, sizeof number);
  switch (number) {
  case LIMN_BYTES:
    return LM_pixel_kind::Bytes;
  case LIMN_WORDS:
    return LM_pixel_kind::Words;
  case LIMN_FLOATS:
    return LM_pixel_kind::Floats;
  default:
    Refuse(std::string(name) + ": " + std::to_string(number) + " is no kind of pixel");
  }
}

// Neighbours that would share bytes, `step` bytes apart.
void NeedRoom(const char* name, ptrdiff_t step, ptrdiff_t bytes, const char* what) {
  if (step < bytes && step > -bytes)
    Refuse(std::string(name) + ": " + what + " of " + std::to_string(bytes) +
           " bytes overlap, being " + std::to_string(step) + " bytes apart");
}

// The addresses that a view touches, and some between them.
struct Extent {
  uintptr_t low, high; // high: one past the last byte
  bool Meets(const Extent& other) const { return low < other.high && other.low < high; }
};

// pixelBytes: bytes of each pixel that are looked at. Steps have a checked reach.
template <class Byte>
Extent ExtentOf(const char* name, const LM_view<Byte>& view, ptrdiff_t pixelBytes) {
  const ptrdiff_t down = (ptrdiff_t{view.bounds.bottom} - 1) * view.rowStride;
  const ptrdiff_t right = (ptrdiff_t{view.bounds.right} - 1) * view.pixelStep;
  const uintptr_t first = reinterpret_cast<uintptr_t>(view.pixels);
  const uintptr_t before = static_cast<uintptr_t>(-std::min<ptrdiff_t>(down, 0)) +
                           static_cast<uintptr_t>(-std::min<ptrdiff_t>(right, 0));
  const uintptr_t after = static_cast<uintptr_t>(std::max<ptrdiff_t>(down, 0)) +
                          static_cast<uintptr_t>(std::max<ptrdiff_t>(right, 0)) +
                          static_cast<uintptr_t>(pixelBytes);
  if (first < before || after > UINTPTR_MAX - first)
    Refuse(std::string(name) + ": its rows reach beyond all memory");
  return {first - before, first + after};
}

template <class Byte>
LM_view<Byte> RowsOf(const char* name, Byte* pixels, ptrdiff_t stride, const Format& format,
                     LM_pixel_kind kind) {
  NeedPointer(pixels, name);
  const ptrdiff_t pixelBytes = ptrdiff_t{format.channels} * LM_ComponentBytes(kind);
  NeedReach(name, pixelBytes, format.width);
  const ptrdiff_t rowBytes = format.width * pixelBytes;
  if (stride == 0)
    stride = rowBytes;
  NeedReach(name, stride, format.height);
  if (format.height > 1)
    NeedRoom(name, stride, rowBytes, "rows");
  return {pixels, stride, pixelBytes, {0, 0, format.height, format.width}};
}

LM_source_view ReliefOf(const limn_picture& picture, const Format& format, LM_pixel_kind kind) {
  const ptrdiff_t bytes = LM_ComponentBytes(kind);
  const ptrdiff_t step = picture.relief_step == 0 ? bytes : picture.relief_step;
  NeedRoom("relief", step, bytes, "heights");
  NeedReach("relief", step, format.width);
  const ptrdiff_t stride = picture.relief_stride == 0 ? step * format.width : picture.relief_stride;
  NeedRoom("relief", stride, bytes, "heights");
  NeedReach("relief", stride, format.height);
  return {picture.relief, stride, step, {0, 0, format.height, format.width}};
}

// Rows of one view that fit into the gaps between those of the other, side by side in memory.
bool AreSideBySide(const LM_render_views& views) {
  const ptrdiff_t stride = views.source.rowStride;
  if (stride != views.output.rowStride)
    return false;
  const uintptr_t period = static_cast<uintptr_t>(stride < 0 ? -stride : stride);
  const uintptr_t rowBytes = static_cast<uintptr_t>(views.source.bounds.right) *
                             static_cast<uintptr_t>(views.source.pixelStep);
  const uintptr_t source = reinterpret_cast<uintptr_t>(views.source.pixels);
  const uintptr_t output = reinterpret_cast<uintptr_t>(views.output.pixels);
  const uintptr_t gap =
      output > source ? (output - source) % period : period - 1 - (source - output - 1) % period;
  return gap >= rowBytes && gap + rowBytes <= period;
}

} // namespace

bool operator==(const Format& a, const Format& b) {
  return a.width == b.width && a.height == b.height && a.channels == b.channels &&
         a.area.top == b.area.top && a.area.left == b.area.left && a.area.bottom == b.area.bottom &&
         a.area.right == b.area.right;
}

Format FormatOf(const limn_picture& picture) {
  NeedRange("width", picture.width, 1, LIMN_LONGEST_SIDE);
  NeedRange("height", picture.height, 1, LIMN_LONGEST_SIDE);
  NeedRange("channels", picture.channels, 3, LIMN_MOST_CHANNELS);
  const limn_area& area = picture.area;
  Format format = {
      picture.width, picture.height, picture.channels, {0, 0, picture.height, picture.width}};
  if (area.x == 0 && area.y == 0 && area.width == 0 && area.height == 0)
    return format;
  NeedRange("area.x", area.x, 0, picture.width - 1);
  NeedRange("area.y", area.y, 0, picture.height - 1);
  NeedRange("area.width", area.width, 1, picture.width - area.x);
  NeedRange("area.height", area.height, 1, picture.height - area.y);
  format.area = {area.y, area.x, area.y + area.height, area.x + area.width};
  return format;
}

Pixels PixelsOf(const limn_picture& picture, const Format& format, int ownRelief) {
  Pixels pixels = {};
  LM_render_views& views = pixels.views;
  views.kind = KindOf("kind", picture.kind);
  views.source = RowsOf("source", picture.source, picture.source_stride, format, views.kind);
  views.output = RowsOf("output", picture.output, picture.output_stride, format, views.kind);
  const Extent source = ExtentOf("source", views.source, views.source.pixelStep);
  const Extent output = ExtentOf("output", views.output, views.output.pixelStep);
  pixels.inPlace = picture.source == picture.output &&
                   (format.height == 1 || views.source.rowStride == views.output.rowStride);
  if (!pixels.inPlace && source.Meets(output) && !AreSideBySide(views))
    Refuse("output: it shares bytes with the source without being the same pixels");
  if (picture.relief != nullptr) {
    views.reliefKind = KindOf("relief_kind", picture.relief_kind);
    views.relief = ReliefOf(picture, format, views.reliefKind);
  } else if (ownRelief > 0) {
    views.reliefKind = views.kind;
    views.relief = views.source;
    views.relief.pixels += ptrdiff_t{ownRelief - 1} * LM_ComponentBytes(views.kind);
  }
  if (views.relief.pixels != nullptr)
    pixels.reliefIsInOutput =
        ExtentOf("relief", views.relief, LM_ComponentBytes(views.reliefKind)).Meets(output);
  return pixels;
}

} // namespace limn
