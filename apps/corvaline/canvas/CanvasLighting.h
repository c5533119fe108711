// Lights what a view shows, on another thread and all cores, while the window goes on.
#pragma once

#include "EditorDocument.h"

#include "LM_render.h"

#include <QColorTransform>
#include <QImage>
#include <QObject>
#include <QThreadPool>

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
  int number = 0; // of this wish
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
// of that size. One frame is made at a time, of the latest wish.
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
    vips::VImage planes; // of which only the part has pixels
    QImage plain, shownPlain;
    QColorTransform toScreen;
    // Heights, where they are none of the planes, and what they were made for.
    LM_height_source source;
    int channel = 0;
    vips::VImage heights;
    // The mask, and its key.
    qint64 maskKey = 0;
    vips::VImage mask;
  };

  // Sums of light that stay while only the surface changes, and the job that they belong to.
  struct Kept {
    LM_render_job job;
    LM_kept_sums sums;
  };

  void _work();
  Frame _make(const FrameWish& wish);
  void _see(const View& view);
  void _setRelief(const Recipe& recipe, foo& parameters, limn::LitSettings& settings);
  limn::LitSettings _settings(const FrameWish& wish);
  LM_kept_sums* _keep(const limn::LitSettings& settings);

  EditorDocument& _document;
  Seen _seen; // this and the sums belong to the thread at work
  std::unique_ptr<Kept> _kept;
  std::mutex _wishing;
  std::optional<FrameWish> _wish;
  bool _isAtWork = false;
  QThreadPool _pool;
};

} // namespace editor
