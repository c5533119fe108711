#include "Digests.h"

#include <QThreadPool>

#include <exception>
#include <memory>

namespace editor {

void Digests::note(const std::string& path) {
  auto promise = std::make_shared<std::promise<limn::RecipeFile>>();
  _files[path] = promise->get_future().share();
  QThreadPool::globalInstance()->start([promise, path] {
    try {
      promise->set_value(limn::RecipeFileOf(path));
    } catch (...) {
      promise->set_exception(std::current_exception());
    }
  });
}

limn::RecipeFile Digests::of(const std::string& path) {
  if (!_files.contains(path))
    note(path);
  return _files[path].get();
}

} // namespace editor
