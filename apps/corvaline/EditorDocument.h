// The image being edited: its pixels, its channels, the selection, and the way back.
#pragma once

#include "ImageFiles.h"

#include "CVDocument.h"
#include "reduced_photograph.h"

#include <QImage>
#include <QObject>
#include <QRect>
#include <QStringList>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

struct foo;

namespace editor {

// What a filter works on. area: in image pixels; empty means the whole image. mask: 8-bit grey, as
// large as the image, 255 fully selected; null means that everything is selected.
struct Selection {
  QRect area;
  QImage mask;
  bool operator==(const Selection& other) const {
    return area == other.area && mask.cacheKey() == other.mask.cacheKey();
  }
};

// Every change of pixels or selection can be undone, back to the opening of the image or until the
// steps hold more memory than UNDO_BYTES (the latest one is always kept).
class EditorDocument : public QObject {
  Q_OBJECT

public:
  static constexpr size_t UNDO_BYTES = size_t{512} << 20;

  // Takes an image over, without selection, further channels and steps.
  void setImage(OpenedImage image);
  bool isEmpty() const { return _image.photograph.pixels.empty(); }
  const OpenedImage& image() const { return _image; }
  QSize size() const { return {_image.photograph.width, _image.photograph.height}; }
  QRect bounds() const { return {QPoint(0, 0), size()}; }
  // Of more than 8 bits a channel: shown, and given to filters, in 8 bits, and lit as it is.
  bool isDeep() const { return _image.photograph.depth != VIPS_FORMAT_UCHAR; }
  // `area` of the pixels in 32-bit colour; alpha and further channels are not shown.
  QImage colours(const QRect& area) const;

  // `area` of the image, of its further channels and of the selection's mask, its longer side
  // reduced to `longestSide`. Looks at some pixels only, so that it takes a few milliseconds for an
  // image of any size.
  limn::ReducedPhotograph reduced(const QRect& area, int longestSide) const;

  // Appends a channel for filters to read. It is not written with the image. False when its sides
  // are not the image's.
  bool addChannel(limn::GreyImage channel);
  QStringList channelNames() const;
  // The files of the appended channels.
  std::vector<std::string> channelFiles() const;

  const Selection& selection() const { return _selection; }
  // As one step that can be undone; `area` is cut to the image.
  void select(Selection selection);
  // The area that a filter runs on.
  QRect filterArea() const;

  // Runs `filter` on an image that is not deep, and the filter area, as one step that can be undone
  // when it answers Done; otherwise nothing has changed.
  using Filter = std::function<CVResult(CVDocument&, CVRect)>;
  CVResult change(const Filter& filter);
  // Lets `filter` see a deep image, whatever it does to it, for what it asks the user.
  CVResult ask(const Filter& filter);
  // Lights a deep image and the filter area with the filter's parameters, as one such step. goOn:
  // gets 0 … 1, and answers whether to.
  CVResult light(std::shared_ptr<const foo> parameters, const std::function<bool(double)>& goOn);

  bool canUndo() const { return !_undo.empty(); }
  bool canRedo() const { return !_redo.empty(); }
  // A number of its own for each point of this history: the same again after going back to it.
  int position() const { return _position; }
  void undo() { _move(_undo, _redo); }
  void redo() { _move(_redo, _undo); }

  // Whether the pixels differ from those of the file.
  bool isModified() const { return _pixelState != _savedState; }
  // The image is now what `path` holds; it may be saved there again.
  void noteSaved(const QString& path);
  // For writing; what the writer has to say is added to its notices.
  limn::Photograph& photograph() { return _image.photograph; }

Q_SIGNALS:
  void opened();
  void pixelsChanged(const QRect& area);
  void selectionChanged();
  void channelsChanged();
  // Modification, steps, channels or name.
  void stateChanged();

private:
  // One step: what to exchange with the document to go back, or forth again. planes: the bytes of
  // `area`, of the image (of a deep one in 8 bits and as it is) and then of each further channel.
  struct Step {
    QRect area; // empty when the pixels stay
    std::vector<std::vector<uint8_t>> planes;
    int pixelState = 0;
    Selection selection;
    int position = 0;
    size_t bytes() const;
  };
  struct Buffer {
    uint8_t* data;
    size_t pixelBytes;
  };

  std::vector<Buffer> _buffers();
  Step _stepBack(const QRect& pixelArea);
  void _record(Step step);
  void _move(std::deque<Step>& from, std::deque<Step>& to);
  void _exchange(Step& step);
  CVResult _wrap(CVDocument& document, QImage& mask);
  CVResult _run(const Filter& filter, const QRect& area);

  OpenedImage _image;
  std::vector<limn::GreyImage> _channels;
  Selection _selection;
  std::deque<Step> _undo, _redo;
  int _pixelState = 0; // a number of its own for each content the pixels ever had
  int _savedState = 0;
  int _lastState = 0;
  int _position = 0;
  int _lastPosition = 0;
};

} // namespace editor
