#include "StyleThumbnails.h"

#include "thumbnail.h"

#include <algorithm>
#include <utility>

namespace editor {

QImage ThumbnailImage(const limn::ReducedPhotograph& photograph,
                      const std::vector<uint8_t>& pixels) {
  QImage image(photograph.ShownWidth(), photograph.ShownHeight(), QImage::Format_RGB888);
  const auto rowBytes = static_cast<size_t>(image.width()) * 3;
  if (image.isNull() || pixels.size() < rowBytes * static_cast<size_t>(image.height()))
    return {};
  for (int y = 0; y < image.height(); ++y)
    std::copy_n(pixels.data() + static_cast<size_t>(y) * rowBytes, rowBytes, image.scanLine(y));
  return image;
}

StyleThumbnails::StyleThumbnails(QObject* parent) : QObject(parent) {
  _pool.setMaxThreadCount(1);
  connect(
      this, &StyleThumbnails::madeFor, this,
      [this](int turn, int index, const QImage& picture) {
        if (turn == _turn)
          Q_EMIT made(index, picture);
      },
      Qt::QueuedConnection);
  connect(
      this, &StyleThumbnails::finishedFor, this,
      [this](int turn) {
        if (turn == _turn)
          Q_EMIT finished();
      },
      Qt::QueuedConnection);
}

StyleThumbnails::~StyleThumbnails() {
  cancel();
  _pool.waitForDone();
}

void StyleThumbnails::make(Reduce reduce, std::vector<LM_style> styles) {
  const int turn = ++_turn;
  _pool.start([this, turn, reduce = std::move(reduce), styles = std::move(styles)] {
    limn::ReducedPhotograph photograph;
    try {
      photograph = reduce();
    } catch (const std::exception&) {
      Q_EMIT finishedFor(turn);
      return;
    }
    vips_thread_shutdown();
    Q_EMIT madeFor(turn, UNLIT, ThumbnailImage(photograph, limn::UnlitThumbnail(photograph)));
    for (size_t i = 0; i < styles.size(); ++i) {
      if (turn != _turn)
        return;
      const QImage picture = ThumbnailImage(photograph, limn::LitThumbnail(photograph, styles[i]));
      if (!picture.isNull())
        Q_EMIT madeFor(turn, static_cast<int>(i), picture);
    }
    Q_EMIT finishedFor(turn);
  });
}

} // namespace editor
