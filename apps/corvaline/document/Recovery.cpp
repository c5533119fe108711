#include "Recovery.h"

#include "SavedLights.h"

#include "LM_style_bytes.h"
#include "failure.h"
#include "small_file.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace editor {
namespace {

constexpr const char* RECIPE_FILE = "lights.json";
constexpr const char* MASK_FILE = "mask.png";
constexpr const char* PICTURE = "picture";
constexpr const char* RECIPE = "recipe";
constexpr const char* WINDOWS = "window-*"; // as their folders are named
constexpr int MOST_ATTEMPTS = 3;

QString Root() {
  const QString state = qEnvironmentVariable("XDG_STATE_HOME");
  return (state.startsWith('/') ? state : QDir::homePath() + "/.local/state") + "/limn";
}

std::string WholePath(const std::string& path) {
  return path.empty() ? path
                      : Encoded(QFileInfo(QFile::decodeName(path.c_str())).absoluteFilePath());
}

bool ReadLost(LostLights& lost) {
  try {
    const std::vector<uint8_t> bytes =
        limn::ReadSmallFile(Encoded(lost.folder->filePath(RECIPE_FILE)), LM_LONGEST_STYLE_FILE);
    const QByteArray text(reinterpret_cast<const char*>(bytes.data()),
                          static_cast<qsizetype>(bytes.size()));
    const QJsonObject kept = QJsonDocument::fromJson(text).object();
    lost.picture = kept[PICTURE].toString();
    std::string why;
    return limn::RecipeFromJson(kept[RECIPE].toString().toStdString(), lost.recipe, why);
  } catch (const limn::Failure&) {
    return false;
  }
}

} // namespace

// A lock whose program has ended counts no more, however young it is.
StateFolder::StateFolder(const QString& path) : _path(path), _lock(path + "/lock") {
  _lock.setStaleLockTime(0);
}

std::unique_ptr<StateFolder> StateFolder::Take(const QString& path) {
  std::unique_ptr<StateFolder> folder(new StateFolder(path));
  return folder->_lock.tryLock() ? std::move(folder) : nullptr;
}

std::unique_ptr<StateFolder> StateFolder::Make() {
  // Between its making and its locking another program may take it for one that was left.
  for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
    if (!QDir().mkpath(Root()))
      return nullptr;
    QTemporaryDir made(Root() + "/window-XXXXXX");
    made.setAutoRemove(false);
    if (auto folder = made.isValid() ? Take(made.path()) : nullptr)
      return folder;
  }
  return nullptr;
}

void StateFolder::remove() {
  for (const char* name : {RECIPE_FILE, MASK_FILE})
    QFile::remove(filePath(name));
  _lock.unlock();
  QDir(_path).removeRecursively();
}

void Recovery::keep(EditorDocument& document) {
  if (!document.isModified() || !document.recipe().isLit())
    return forget();
  try {
    std::optional<limn::Recipe> recipe = document.travellingRecipe();
    if (!recipe || !recipe->original)
      return;
    if (_folder == nullptr)
      _folder = StateFolder::Make();
    if (_folder == nullptr)
      return;
    recipe->original->name = WholePath(Encoded(document.originalPath()));
    if (recipe->heights)
      recipe->heights->name = WholePath(recipe->relief.file);
    for (size_t i = 0; i < recipe->channels.size(); ++i)
      recipe->channels[i].name = WholePath(document.original().channels[i].file);
    if (recipe->mask)
      recipe->mask->name = Encoded(_folder->filePath(MASK_FILE));
    _keepMask(document.selection().mask);
    const QJsonObject kept = {{PICTURE, QFileInfo(document.path()).absoluteFilePath()},
                              {RECIPE, QString::fromStdString(limn::RecipeToJson(*recipe))}};
    SaveText(QJsonDocument(kept).toJson(QJsonDocument::Compact).toStdString(),
             _folder->filePath(RECIPE_FILE));
  } catch (const limn::Failure&) {
    // Who lights a picture is not to be stopped because its lights cannot be kept twice.
  }
}

// Packing a mask takes longer than a person waits between two strokes.
void Recovery::_keepMask(const QImage& mask) {
  if (mask.isNull() || mask.cacheKey() == _mask)
    return;
  _mask = mask.cacheKey();
  _masks.setMaxThreadCount(1);
  _masks.clear();
  _masks.start([mask, path = _folder->filePath(MASK_FILE)] { SaveMask(mask, path); });
}

void Recovery::forget() {
  _masks.clear();
  _masks.waitForDone();
  _mask = 0;
  if (_folder != nullptr)
    _folder->remove();
  _folder = nullptr;
}

OpenedImage LostLights::restored() const {
  OpenedImage image = Relit(picture, recipe, std::nullopt);
  image.lights.areSaved = false;
  return image;
}

std::vector<LostLights> FindLostLights() {
  std::vector<LostLights> all;
  const QDir root(Root());
  for (const QString& name : root.entryList({WINDOWS}, QDir::Dirs | QDir::NoSymLinks)) {
    LostLights lost{StateFolder::Take(root.filePath(name)), {}, {}};
    if (lost.folder == nullptr)
      continue;
    if (ReadLost(lost))
      all.push_back(std::move(lost));
    else
      lost.folder->remove();
  }
  return all;
}

} // namespace editor
