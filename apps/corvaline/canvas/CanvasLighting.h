// Lights what a view shows, on another thread and all cores, while the window goes on.
#pragma once

#include "EditorDocument.h"

#include "LM_render.h"

#include <QImage>
#include <QObject>
#include <QThreadPool>

#include <array>
#include <mutex>
#include <optional>

namespace editor {

// The whole picture has `size` pixels where it is seen, at most its own, and `part` of them are
// seen.
struct View {
  QSize size;
  QRect part;
  bool operator==(const View&) const = default;
};

struct FrameWish {
  View view;
  Recipe recipe;
  Selection selection;
  int original = 0; // the document's number of it
  bool marksEnds = false;
  bool isTrial = false; // of lights that are tried out: another is soon to come
  int number = 0;       // of this wish
};

// One complete picture of a view, in 32-bit colour. Null when it could not be made: problem says
// why.
struct Frame {
  View view;
  QImage lit, plain; // the bytes of the picture, with its light and without
  // As they are to be seen: converted from the picture's profile to the screen's, which is taken to
  // be sRGB. Lit, with burnt and drowned pixels marked if that is wished.
  QImage shownLit, shownPlain;
  int number = 0;
  QString problem;
};

// At the picture's own size, the bytes that saving writes, in 8 bits; below, those of a thumbnail
// of that size. One frame is made at a time, of the latest wish. While a light or two are dragged,
// what the others give is kept, and while the surface is changed what all give.
class CanvasLighting : public QObject {
  Q_OBJECT

public:
  // The document outlives it, and keeps its original as it is while its lock is held shared.
  explicit CanvasLighting(EditorDocument& document, QObject* parent = nullptr);
  ~CanvasLighting() override; // waits for the frame at work

  // Forgets the wish before, if it is not at work yet.
  void ask(FrameWish wish);

Q_SIGNALS:
  void made(const editor::Frame& frame);

private:
  // What frames of one view have in common.
  struct Seen {
    View view;
    int original = -1;
    // What is lit: opaque colours of 8 bits, of which only the part has pixels; or, when it is
    // deep, the original's own planes.
    vips::VImage planes;
    bool isDeep = false;
    QImage plain, shownPlain;
    // Heights, where they are none of the colours, and what they were made for.
    LM_height_source source;
    int channel = 0;
    vips::VImage heights;
    // The mask, and its key.
    qint64 maskKey = 0;
    vips::VImage mask;
  };

  void _work();
  Frame _make(const FrameWish& wish);
  // isOwnSize: the frame's pixels are those that saving writes.
  Frame _makeLit(const FrameWish& wish, bool isOwnSize);
  QImage _unused(QSize size);
  QImage _noted(QImage image);
  QImage _drawn(const vips::VImage& colours, const QRect& part);
  QImage _onScreen(const QImage& image);
  void _see(const View& view, bool isOwnSize);
  void _setRelief(const Recipe& recipe, foo& parameters, limn::LitSettings& settings);
  vips::VImage _channel(int number);
  limn::LitSettings _settings(const FrameWish& wish);
  LM_kept_sums* _keep(const FrameWish& wish, const limn::LitSettings& settings);
  void _forgetSums();

  EditorDocument& _document;
  // Of the frame before.
  std::shared_ptr<const foo> _parameters;
  limn_area _area = {};
  LM_kept_sums _kept = {}; // of the lights that have not moved since, while some are tried out
  Seen _seen;              // this and the pictures belong to the thread at work
  // Those that were made last: what nobody else holds any more is written again.
  std::array<QImage, 6> _pictures;
  std::mutex _wishing;
  std::optional<FrameWish> _wish;
  bool _isAtWork = false;
  QThreadPool _pool;
};

} // namespace editor
