// Where the heights of relief come from, and how a plane is made ready to be them.
#pragma once

#include <optional>
#include <string>

#include "LM_height_filters.h"
#include "LM_height_plane.h"

// Stands for what is usual for the kind of source: LM_USUAL_SMOOTHING and LM_USUAL_DETAIL with
// Auto, the latter with fit too, which needs it, and else 0.
constexpr int LM_USUAL = -1;

enum class LM_height_kind {
  Style,     // the channel that the style names, as it is
  None,      // no relief
  Auto,      // luminance, prepared and fitted, for a style that has relief; else none
  Luminance, // 0.299 red + 0.587 green + 0.114 blue
  Channel,   // of the picture, and then those added to it
  File       // a grey picture of the same shape
};

struct LM_height_source {
  LM_height_kind kind = LM_height_kind::Style;
  int channel = 0;  // counted from 1
  std::string file; // a path

  // Differences of less than this between neighbours, of 255, count as grain and go; what is much
  // more stays an edge. 0: nothing is smoothed.
  int smoothing = LM_USUAL;
  // How large the things are that stand out, in thousandths of the picture's longer side: shading
  // that is broader is flattened, what is finer than a fiftieth of it is smoothed. 0: neither.
  int detail = LM_USUAL;
  // Scaled so that slopes are as steep as on a picture of LM_HEIGHTS_SIDE pixels.
  bool fit = false;
  bool invert = false; // what is dark is high

  bool operator==(const LM_height_source&) const = default;
};

// The longer side of the pictures that styles are made for. Smoothing and detail are worked out on
// planes of at most this size: what they leave is no finer.
constexpr int LM_HEIGHTS_SIDE = 1800;

// What suits most photographs from a camera.
constexpr int LM_USUAL_SMOOTHING = 16;
constexpr int LM_USUAL_DETAIL = 20;

constexpr int LM_MOST_SMOOTHING = 255;
constexpr int LM_MOST_DETAIL = 1000;

// The source with what Auto and LM_USUAL stand for put in their place. hasRelief: of the style.
LM_height_source LM_ResolvedSource(LM_height_source source, bool hasRelief);

// Whether the heights are the plane as it is. Of a resolved source, as below.
bool LM_IsPlain(const LM_height_source& source);

// The sides of the plane that is prepared for a picture: those of the picture, or smaller in the
// same shape.
struct LM_plane_size {
  int width;
  int height;
};
LM_plane_size LM_PreparedSize(const LM_height_source& source, int pictureWidth, int pictureHeight);

// Makes heights of the plane of a picture, or of the picture made smaller, whose longer side is
// `pictureSide` at its full size. A constant plane stays constant, and without smoothing, detail,
// fit and invert any plane stays as it is. What fit would lift out of 16 bits is cut off, which
// never happens with a detail. The same on every machine, in whatever steps the rows come. Throws
// std::bad_alloc.
class LM_height_maker {
public:
  // In place; the plane must stay.
  LM_height_maker(const LM_height_source& source, int pictureSide, LM_height_plane& plane);

  // Once the first numRows rows are there: makes heights of those whose neighbours are there too.
  // Only the rows behind may still be written.
  void Advance(int numRows);

private:
  bool _isFittedAlone; // with no detail that does it
  double _fit;         // by how much the heights are steeper than their plane's
  bool _isInverted;
  LM_height_plane& _plane;
  std::optional<LM_edge_keeper> _edges;
  std::optional<LM_detail_keeper> _detail;
  int _numDone = 0;
};
// The whole plane at once.
void LM_PrepareHeights(const LM_height_source& source, int pictureSide, LM_height_plane& plane);
