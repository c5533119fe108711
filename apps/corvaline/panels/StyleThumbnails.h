// Pictures of styles on a photograph, made on another thread while the window goes on.
#pragma once

#include "reduced_photograph.h"

#include "LM_style.h"

#include <QImage>
#include <QObject>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <vector>

namespace editor {

// The picture of a reduced photograph's pixels: red, green and blue, width * 3 bytes a row.
QImage ThumbnailImage(const limn::ReducedPhotograph& photograph,
                      const std::vector<uint8_t>& pixels);

class StyleThumbnails : public QObject {
  Q_OBJECT

public:
  explicit StyleThumbnails(QObject* parent);
  ~StyleThumbnails() override; // waits for the one picture at work

  // Makes the picture without light, as number UNLIT, and then those of all styles, in their order.
  // Those asked for before are forgotten. reduce: makes the photograph, on the other thread; when
  // it throws there are no pictures.
  using Reduce = std::function<limn::ReducedPhotograph()>;
  static constexpr int UNLIT = -1;
  void make(Reduce reduce, std::vector<LM_style> styles);
  void cancel() { ++_turn; }

Q_SIGNALS:
  // On the window's thread. A style whose picture could not be made is passed over.
  void made(int index, const QImage& picture);
  void finished();

private:
  // Has the window's thread tell something about a turn, if that is still the latest.
  void _tell(int turn, const std::function<void()>& news);

  std::atomic<int> _turn{0}; // what is made for an earlier one is not wanted any more
  QThreadPool _pool;
};

} // namespace editor
