// Opening and saving images, in the words of the desktop.
#pragma once

#include "EditorRecipe.h"
#include "ImageLevels.h"

#include "height_image.h"
#include "image_file.h"
#include "recipe.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <string_view>

namespace editor {

// Lights that come back with a picture.
struct SavedLights {
  Recipe recipe; // unlit: none
  Selection selection;
  std::vector<limn::GreyImage> channels;
  QStringList missing; // files that took part and are not there any more
  // Whether a file holds all of this.
  bool areSaved = true;
};

// A photograph and where it came from. mayBeReplaced: writing it to `path` loses nothing that the
// file held: its format can be written and reading it changed nothing.
struct OpenedImage {
  limn::Photograph photograph;
  QString original; // the file that has these pixels
  QString path;     // where it is saved
  bool mayBeReplaced = false;
  SavedLights lights = {};
  QString whyUnlit = {};   // a recipe was there, and could not be used
  ImageHalves halves = {}; // of the photograph, made while it was read
};

// A path as the file system has it.
std::string Encoded(const QString& path);

// Starts libvips, once in the program, before the others are used. Throws limn::Failure.
void StartImageFiles();

// All of these throw limn::Failure, whose sentence names the file. On any thread; one waits for the
// other.
OpenedImage OpenImageFile(const QString& path);
limn::GreyImage OpenChannelFile(const QString& path);
limn::GreyImage OpenMaskFile(const QString& path);
LM_height_plane HeightsOf(const LM_height_source& source, const limn::HeightSubject& subject);
// Writes these pixels of the photograph's depth, which may still have to be lit, with all that it
// says beside its own, and the recipe, if there is one. Replaces what is at `path`, which keeps its
// old content until the new one is complete. Its extension decides the format. Answers what the
// format could not hold, a sentence each.
QStringList SaveImageFile(limn::Photograph& photograph, const vips::VImage& planes,
                          const std::optional<limn::Recipe>& recipe, const QString& path);

// The JSON of the recipe in a picture's XMP; nothing where there is none, or no picture.
std::optional<std::string> RecipeInFile(const QString& path);
// False when it cannot be written; what is at `path` stays until the new file is complete.
bool SaveMask(const QImage& mask, const QString& path);
// Replaces what is at `path`, which stays until the new file is complete. Throws limn::Failure.
void SaveText(std::string_view text, const QString& path);

// libvips' save options, in brackets, with which images are written under such a name.
std::string SaveOptions(const QString& path);

// For file dialogs: patterns of files that can be opened, and that can be written.
QString ReadablePatterns();
QString WritablePatterns();
// Under which an image from `path` is written: its own, or if that cannot be, one that keeps depth.
QString OutputSuffix(const QString& path, VipsBandFormat depth);
// Whether an image can be written under this name, going by its extension.
bool IsWritable(const QString& path);

} // namespace editor
