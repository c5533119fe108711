// What a window keeps on disk in case the program, or the power, ends before it does.
#pragma once

#include "EditorDocument.h"

#include <QLockFile>
#include <QThreadPool>

#include <memory>

namespace editor {

// A folder of the user's state folder (XDG_STATE_HOME/limn), locked for as long as it is held.
class StateFolder {
public:
  // Makes a new one; null when there can be none.
  static std::unique_ptr<StateFolder> Make();
  // Takes one that is there; null when a living program has it.
  static std::unique_ptr<StateFolder> Take(const QString& path);

  QString filePath(const QString& name) const { return _path + "/" + name; }
  void remove(); // from the disk, with its files

private:
  explicit StateFolder(const QString& path);

  QString _path;
  QLockFile _lock;
};

// Keeps the unsaved lights of a document: its recipe, a few hundred bytes, and its mask where there
// is one. Pixels that were baked are not kept; of these the lights before are.
class Recovery {
public:
  ~Recovery() { forget(); }
  // After each step. The recipe is on the disk when this returns, whole; the mask a moment later.
  void keep(EditorDocument& document);
  // For when nothing is to be lost any more.
  void forget();

private:
  void _keepMask(const QImage& mask);

  std::unique_ptr<StateFolder> _folder;
  qint64 _mask = 0; // that was kept last
  QThreadPool _masks;
};

// What a program kept that did not end well.
struct LostLights {
  std::unique_ptr<StateFolder> folder;
  QString picture; // as it was to be saved
  limn::Recipe recipe;

  // Opens the picture with its lights, as they were. Throws limn::Failure.
  OpenedImage restored() const;
};

// Of all programs that are not running any more.
std::vector<LostLights> FindLostLights();

} // namespace editor
