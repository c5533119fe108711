#include "Digests.h"

#include <QThreadPool>

#include <memory>

namespace editor {

void Digests::note(const std::string& path) {
  const auto reading = std::make_shared<std::packaged_task<limn::RecipeFile()>>(
      [path] { return limn::RecipeFileOf(path); });
  _files[path] = reading->get_future().share();
  QThreadPool::globalInstance()->start([reading] { (*reading)(); });
}

limn::RecipeFile Digests::of(const std::string& path) {
  if (!_files.contains(path))
    note(path);
  return _files[path].get();
}

} // namespace editor
