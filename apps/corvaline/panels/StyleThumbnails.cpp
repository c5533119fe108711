#include "StyleThumbnails.h"

#include "thumbnail.h"

#include <utility>

namespace editor {

QImage ThumbnailImage(const limn::ReducedPhotograph& photograph,
                      const std::vector<uint8_t>& pixels) {
  const int width = photograph.ShownWidth();
  const int height = photograph.ShownHeight();
  if (pixels.size() < static_cast<size_t>(width) * static_cast<size_t>(height) * 3)
    return {};
  return QImage(pixels.data(), width, height, qsizetype{width} * 3, QImage::Format_RGB888).copy();
}

StyleThumbnails::StyleThumbnails(QObject* parent) : QObject(parent) {
  _pool.setMaxThreadCount(1);
}

StyleThumbnails::~StyleThumbnails() {
  cancel();
  _pool.waitForDone();
}

void StyleThumbnails::_tell(int turn, const std::function<void()>& news) {
  const auto tell = [this, turn, news] {
    if (turn == _turn)
      news();
  };
  QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

void StyleThumbnails::make(Reduce reduce, std::vector<LM_style> styles) {
  const int turn = ++_turn;
  _pool.start([this, turn, reduce = std::move(reduce), styles = std::move(styles)] {
    const auto tellMade = [&](int index, const QImage& picture) {
      _tell(turn, [this, index, picture] { Q_EMIT made(index, picture); });
    };
    limn::ReducedPhotograph photograph;
    try {
      photograph = reduce();
    } catch (const std::exception&) {
      _tell(turn, [this] { Q_EMIT finished(); });
      return;
    }
    vips_thread_shutdown();
    tellMade(UNLIT, ThumbnailImage(photograph, limn::UnlitThumbnail(photograph)));
    for (size_t i = 0; i < styles.size(); ++i) {
      if (turn != _turn)
        return;
      const QImage picture = ThumbnailImage(photograph, limn::LitThumbnail(photograph, styles[i]));
      if (!picture.isNull())
        tellMade(static_cast<int>(i), picture);
    }
    _tell(turn, [this] { Q_EMIT finished(); });
  });
}

} // namespace editor
