#include "SavedLights.h"

#include "failure.h"
#include "small_file.h"

#include "LM_style_bytes.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

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
std::string FileOf(const limn::RecipeFile& named, const std::optional<QString>& folder) {
  if (folder && !IsBare(named.name))
    Refuse(named.name, "is no file's name");
  std::string path = folder ? Encoded(*folder + "/") + named.name : named.name;
  if (!QFile::exists(QFile::decodeName(path.c_str())))
    Refuse(path, "is not there");
  if (!named.digest.empty() && limn::RecipeFileOf(path).digest != named.digest)
    Refuse(path, "is not the file that was lit");
  return path;
}

// What `open` reads, of the picture's size.
limn::GreyImage GreyOf(const std::string& path, const limn::Photograph& photograph,
                       limn::GreyImage (*open)(const QString&)) {
  limn::GreyImage grey = open(QFile::decodeName(path.c_str()));
  if (grey.width != photograph.width || grey.height != photograph.height)
    Refuse(path, "is not of the picture's size");
  return grey;
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

OpenedImage RelitAsFound(const QString& picture, const FoundRecipe& found) {
  limn::Recipe recipe;
  std::string why;
  if (!limn::RecipeFromJson(found.json, recipe, why))
    Refuse(found.file, "its recipe: " + why);
  return Relit(picture, recipe, QFileInfo(picture).absolutePath());
}

} // namespace

QString RecipePathOf(const QString& picture) {
  return picture + ".limn.json";
}

QString MaskPathOf(const QString& recipePath) {
  return recipePath + ".mask.png";
}

OpenedImage Relit(const QString& picture, const limn::Recipe& recipe,
                  const std::optional<QString>& folder) {
  if (!recipe.original || recipe.original->digest.empty())
    Refuse(Encoded(picture), "its recipe names no original");
  const std::string original = FileOf(*recipe.original, folder);
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
      const limn::GreyImage mask = GreyOf(FileOf(*recipe.mask, folder), photograph, OpenMaskFile);
      lights.selection.mask =
          QImage(mask.pixels.data(), mask.width, mask.height, mask.width, QImage::Format_Grayscale8)
              .copy();
    });
  if (recipe.heights)
    TryFile(*recipe.heights, lights, [&] {
      const std::string file = FileOf(*recipe.heights, folder);
      lights.recipe.relief = recipe.relief;
      lights.recipe.relief.file = file;
    });
  for (const limn::RecipeFile& channel : recipe.channels)
    TryFile(channel, lights, [&] {
      lights.channels.push_back(GreyOf(FileOf(channel, folder), photograph, OpenChannelFile));
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
        return RelitAsFound(path, found);
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
