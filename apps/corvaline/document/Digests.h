// What files are, by their bytes.
#pragma once

#include "recipe.h"

#include <future>
#include <map>
#include <string>

namespace editor {

// Each file is read through once, on another thread, from when it is noted: as it was then.
class Digests {
public:
  void note(const std::string& path);
  // Waits for it. Throws limn::Failure.
  limn::RecipeFile of(const std::string& path);
  void forget() { _files.clear(); }

private:
  std::map<std::string, std::shared_future<limn::RecipeFile>> _files;
};

} // namespace editor
