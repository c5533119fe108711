#include "SavedLights.h"

#include "failure.h"
#include "small_file.h"

#include "LM_style_bytes.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace editor {
namespace {

// A recipe as it was found, before it is read.
struct FoundRecipe {
  std::string file; // where
  std::string json;
};

[[noreturn]] void Refuse(const std::string& file, const std::string& reason) {
  throw limn::Failure(limn::ExitCode::BadInput, file + ": " + reason);
}

bool IsBare(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
         name.find('\0') == std::string::npos;
}

// The file that a recipe names, where it is there and is the one that took part.
std::string FileOf(const limn::RecipeFile& named, FileNames names, const QString& folder) {
  if (names == FileNames::Bare && !IsBare(named.name))
    Refuse(named.name, "is no file's name");
  std::string path = names == FileNames::Bare ? Encoded(folder + "/") + named.name : named.name;
  if (!QFile::exists(QFile::decodeName(path.c_str())))
    Refuse(path, "is not there");
  if (!named.digest.empty() && limn::RecipeFileOf(path).digest != named.digest)
    Refuse(path, "is not the file that was lit");
  return path;
}

QImage MaskOf(const std::string& path, const limn::Photograph& photograph) {
  const limn::GreyImage read = OpenMaskFile(QFile::decodeName(path.c_str()));
  if (read.width != photograph.width || read.height != photograph.height)
    Refuse(path, "is not of the picture's size");
  QImage mask(read.width, read.height, QImage::Format_Grayscale8);
  for (int y = 0; y < read.height; ++y)
    std::copy_n(read.pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(read.width),
                read.width, mask.scanLine(y));
  return mask;
}

limn::GreyImage ChannelOf(const std::string& path, const limn::Photograph& photograph) {
  limn::GreyImage channel = OpenChannelFile(QFile::decodeName(path.c_str()));
  if (channel.width != photograph.width || channel.height != photograph.height)
    Refuse(path, "is not of the picture's size");
  return channel;
}

// Does `work` with a file that the recipe can do without, or notes that it is missing.
template <class Work> void TryFile(const limn::RecipeFile& file, SavedLights& lights, Work work) {
  try {
    work();
  } catch (const limn::Failure&) {
    lights.missing << QString::fromStdString(file.name);
  }
}

// What can be found of the picture's recipes, the younger one first. A file beside it that cannot
// be read is one without content.
std::vector<FoundRecipe> RecipesOf(const QString& picture) {
  std::vector<FoundRecipe> found;
  if (std::optional<std::string> json = RecipeInFile(picture))
    found.push_back({Encoded(picture), std::move(*json)});
  const QFileInfo beside(RecipePathOf(picture));
  if (!beside.exists())
    return found;
  FoundRecipe recipe{Encoded(beside.filePath()), {}};
  const std::vector<uint8_t> bytes = limn::ReadSmallFile(recipe.file, LM_LONGEST_STYLE_FILE);
  recipe.json.assign(bytes.begin(), bytes.end());
  const bool isYounger = beside.lastModified() >= QFileInfo(picture).lastModified();
  found.insert(isYounger ? found.begin() : found.end(), std::move(recipe));
  return found;
}

OpenedImage Relit(const QString& picture, const FoundRecipe& found) {
  limn::Recipe recipe;
  std::string why;
  if (!limn::RecipeFromJson(found.json, recipe, why))
    Refuse(found.file, "its recipe: " + why);
  return Relit(picture, recipe, FileNames::Bare, QFileInfo(picture).absolutePath());
}

} // namespace

QString RecipePathOf(const QString& picture) {
  return picture + ".limn.json";
}

QString MaskPathOf(const QString& recipePath) {
  return recipePath + ".mask.png";
}

OpenedImage Relit(const QString& picture, const limn::Recipe& recipe, FileNames names,
                  const QString& folder) {
  if (!recipe.original || recipe.original->digest.empty())
    Refuse(Encoded(picture), "its recipe names no original");
  const std::string original = FileOf(*recipe.original, names, folder);
  OpenedImage image = OpenImageFile(QFile::decodeName(original.c_str()));
  image.path = picture;
  image.mayBeReplaced = image.photograph.notices.empty() && IsWritable(picture);
  const limn::Photograph& photograph = image.photograph;
  SavedLights lights;
  lights.recipe.lights = InWorldUnit(recipe.style);
  if (!recipe.heights)
    lights.recipe.relief = recipe.relief;
  if (recipe.area) {
    const QRect area(recipe.area->x, recipe.area->y, recipe.area->width, recipe.area->height);
    lights.selection.area = area & QRect(0, 0, photograph.width, photograph.height);
    if (lights.selection.area != area || area.isEmpty())
      Refuse(Encoded(picture), "the area of its recipe is not in the picture");
  }
  if (recipe.mask)
    TryFile(*recipe.mask, lights, [&] {
      lights.selection.mask = MaskOf(FileOf(*recipe.mask, names, folder), photograph);
    });
  if (recipe.heights)
    TryFile(*recipe.heights, lights, [&] {
      const std::string file = FileOf(*recipe.heights, names, folder);
      lights.recipe.relief = recipe.relief;
      lights.recipe.relief.file = file;
    });
  for (const limn::RecipeFile& channel : recipe.channels)
    TryFile(channel, lights, [&] {
      lights.channels.push_back(ChannelOf(FileOf(channel, names, folder), photograph));
    });
  lights.areSaved = lights.missing.isEmpty();
  image.lights = std::move(lights);
  return image;
}

OpenedImage OpenPicture(const QString& path) {
  std::string why;
  try {
    for (const FoundRecipe& found : RecipesOf(path)) {
      try {
        return Relit(path, found);
      } catch (const limn::Failure& failure) {
        why = why.empty() ? failure.what() : why;
      }
    }
  } catch (const limn::Failure& failure) {
    why = failure.what();
  }
  OpenedImage image = OpenImageFile(path);
  image.whyUnlit = QString::fromStdString(why);
  return image;
}

} // namespace editor
