#include "ImageFiles.h"

#include "atomic_file.h"
#include "failure.h"
#include "image_library.h"
#include "image_output.h"
#include "image_source.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <mutex>

namespace editor {
namespace {

// What libvips complains about is told from what others read and write only one at a time.
std::mutex oneAtATime;

QString Patterns(limn::Use use) {
  QStringList patterns;
  for (const std::string& extension : limn::Extensions(use))
    patterns << "*" + QString::fromStdString(extension);
  return patterns.join(' ');
}

} // namespace

std::string Encoded(const QString& path) {
  return QFile::encodeName(path).toStdString();
}

void StartImageFiles() {
  limn::StartImageLibrary(limn::ALL_THREADS);
}

// Formats that lose something are written finely; their programs' own default is for the web.
std::string SaveOptions(const QString& path) {
  static const QStringList lossy = {"jpg", "jpeg", "jpe", "webp", "heic", "heif", "avif"};
  return lossy.contains(QFileInfo(path).suffix().toLower()) ? "[Q=92]" : "";
}

OpenedImage OpenImageFile(const QString& path) {
  const std::lock_guard lock(oneAtATime);
  OpenedImage image{{}, path, path};
  image.photograph =
      limn::ReadPhotograph(Encoded(path), VIPS_FORMAT_FLOAT,
                           [&](const limn::Photograph& part) { image.halves.grow(part); });
  image.mayBeReplaced = image.photograph.notices.empty() && IsWritable(path);
  return image;
}

limn::GreyImage OpenChannelFile(const QString& path) {
  const std::lock_guard lock(oneAtATime);
  return limn::ReadGreyImage(Encoded(path));
}

limn::GreyImage OpenMaskFile(const QString& path) {
  const std::lock_guard lock(oneAtATime);
  return limn::ReadMask(Encoded(path));
}

std::optional<std::string> RecipeInFile(const QString& path) {
  const std::lock_guard lock(oneAtATime);
  const limn::Complaints complaints;
  try {
    return limn::RecipeIn(limn::OpenImage(Encoded(path)));
  } catch (...) {
    limn::CaughtLibraryFailure(limn::ExitCode::BadInput, Encoded(path)); // which empties libvips'
    return std::nullopt;
  }
}

bool SaveMask(const QImage& mask, const QString& path) {
  QSaveFile file(path);
  return file.open(QIODevice::WriteOnly) && mask.save(&file, "PNG") && file.commit();
}

void SaveText(std::string_view text, const QString& path) {
  limn::AtomicFile file(limn::ResolveTarget(Encoded(path)), limn::Existing::Replace);
  file.Write(text.data(), text.size());
  file.Commit();
}

LM_height_plane HeightsOf(const LM_height_source& source, const limn::HeightSubject& subject) {
  const std::lock_guard lock(oneAtATime);
  const std::string file = limn::ShownName(subject.path);
  const limn::Complaints complaints;
  try {
    LM_height_plane plane = limn::HeightPlane(source, subject);
    complaints.Check(limn::ExitCode::BadInput, file);
    return plane;
  } catch (...) {
    throw limn::CaughtLibraryFailure(limn::ExitCode::BadInput, file);
  }
}

QStringList SaveImageFile(limn::Photograph& photograph, const vips::VImage& planes,
                          const std::optional<limn::Recipe>& recipe, const QString& path) {
  const std::lock_guard lock(oneAtATime);
  const limn::OutputName name{Encoded(path), SaveOptions(path)};
  limn::CheckOutputFormat(name);
  limn::Photograph written;
  written.width = photograph.width;
  written.height = photograph.height;
  written.numPlanes = photograph.numPlanes;
  written.depth = photograph.depth;
  written.metadata = photograph.metadata;
  if (recipe && limn::HoldsXmp(name))
    limn::PutRecipe(written.metadata, limn::RecipeToJson(*recipe));
  limn::WritePhotograph(written, planes, name, limn::ResolveTarget(name.path),
                        limn::Existing::Replace);
  QStringList notices;
  for (const std::string& notice : written.notices)
    notices << QString::fromStdString(notice);
  return notices;
}

QString ReadablePatterns() {
  return Patterns(limn::Use::Reading);
}

QString WritablePatterns() {
  return Patterns(limn::Use::Writing);
}

QString OutputSuffix(const QString& path, VipsBandFormat depth) {
  return IsWritable(path) ? QFileInfo(path).suffix() : depth == VIPS_FORMAT_FLOAT ? "tif" : "png";
}

bool IsWritable(const QString& path) {
  return limn::IsName(Encoded(path), limn::Use::Writing);
}

} // namespace editor
