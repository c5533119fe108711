// The picture being edited: what is lit, how it is lit, what is selected, and the way back.
#pragma once

#include "Digests.h"
#include "EditorRecipe.h"
#include "ImageFiles.h"
#include "MaskChange.h"
#include "Original.h"

#include "recipe.h"

#include "CVDocument.h"

#include <QObject>
#include <QStringList>

#include <cstdint>
#include <deque>
#include <functional>
#include <shared_mutex>
#include <vector>

namespace editor {

// Light is a recipe beside the original pixels, and changes none of them until it is baked. Every
// change of recipe, selection or pixels is a step that can be undone, back to the opening of the
// picture or until the steps hold more memory than UNDO_BYTES (the latest one is always kept). All
// is called on the window's thread, unless it says otherwise.
class EditorDocument : public QObject {
  Q_OBJECT

public:
  static constexpr size_t UNDO_BYTES = size_t{512} << 20;

  // Takes an image over with its lights, without steps.
  void setImage(OpenedImage image);
  bool isEmpty() const { return _original.photograph.pixels.empty(); }
  QString path() const { return _path; }
  // Writing the picture to its path loses nothing that the file held.
  bool mayBeReplaced() const { return _mayBeReplaced; }
  const limn::Photograph& photograph() const { return _original.photograph; }
  QSize size() const { return _original.size(); }
  QRect bounds() const { return {QPoint(0, 0), size()}; }
  // Of more than 8 bits a channel: shown, and given to filters, in 8 bits, and lit as it is.
  bool isDeep() const { return photograph().depth != VIPS_FORMAT_UCHAR; }

  // For other threads: who holds the lock shared may read the original and its number, which is
  // another one after each change of its pixels or channels.
  std::shared_mutex& lock() { return _lock; }
  Original& original() { return _original; }
  int originalNumber() const { return _originalNumber; }

  // Appends a channel for relief and for filters to read. It is not written with the image. False
  // when its sides are not the image's.
  bool addChannel(limn::GreyImage channel);
  QStringList channelNames() const;

  const Selection& selection() const { return _selection; }
  // As one step; `area` is cut to the image.
  void select(Selection selection);
  // The area that is lit, and that a filter runs on.
  QRect filterArea() const;

  const Recipe& recipe() const { return _recipe; }
  // The recipe's lights, in WORLD_UNIT; null when it has none.
  const LM_style* lights() const { return _recipe.lights ? &*_recipe.lights : nullptr; }
  // What is to be seen: the recipe, or what is tried in its place.
  const Recipe& shown() const { return _tried ? *_tried : _recipe; }
  // The recipe with other lights, whatever unit these are in; without any it is unlit.
  Recipe withLights(const LM_style& lights) const;
  // Without any light, and with its source of heights.
  Recipe withoutLights() const;
  // Shows other lights without keeping them, until something is kept or stopTrying.
  void tryLights(const LM_style& lights);
  void stopTrying();
  bool isTrying() const { return _tried.has_value(); }
  // Makes it the recipe. step: what undoing it is called, "Move Light".
  void keep(Recipe recipe, const QString& step);
  void keepLights(const LM_style& lights, const QString& step) { keep(withLights(lights), step); }
  // The latest recipe that lit the picture, also after it was baked or undone; may be unlit.
  const Recipe& lastLit() const { return _lastLit; }

  // The whole picture as it is to be saved, in its own depth: made while it is written. Throws as
  // Original::lit.
  vips::VImage litPlanes();

  // How the picture is lit, to go into its file; none when no style says it. Names of files are
  // bare. Throws limn::Failure.
  std::optional<limn::Recipe> travellingRecipe();

  // Makes the light pixels, and then `next` the recipe, as one step. goOn: gets 0 … 1, and answers
  // whether to.
  using GoOn = std::function<bool(double)>;
  CVResult bake(const QString& step, const GoOn& goOn, const Recipe& next = {});
  // Bakes, and runs `filter` on the 8 bits and the filter area, as one step when it answers Done;
  // otherwise nothing has changed. Not for deep images.
  using Filter = std::function<CVResult(CVDocument&, CVRect)>;
  CVResult change(const QString& step, const Filter& filter, const GoOn& goOn);
  // Lets `filter` see the original. It is ended before it answers Done.
  CVResult ask(const Filter& filter);

  bool canUndo() const { return !_undo.empty(); }
  bool canRedo() const { return !_redo.empty(); }
  // What the next step back, or forth, is called; empty when there is none.
  QString undoName() const { return canUndo() ? _undo.back().name : QString(); }
  QString redoName() const { return canRedo() ? _redo.back().name : QString(); }
  void undo() { _move(_undo, _redo); }
  void redo() { _move(_redo, _undo); }
  // What the steps hold.
  size_t undoBytes() const;

  // Whether the picture differs from its file, in more than lights whose recipe is kept.
  bool isModified() const { return _content() != _saved; }
  // The picture, lit, is now what `path` holds; it may be saved there again.
  void noteSaved(const QString& path);
  // A file holds the recipe, from which the picture can be lit again as it is.
  void noteKept();
  // Whether the file that was opened still holds the original.
  bool hasOriginalFile() const { return !_original.file.empty(); }
  QString originalPath() const { return _originalPath; }
Q_SIGNALS:
  void opened();
  void pixelsChanged();
  void selectionChanged();
  void channelsChanged();
  void recipeChanged();
  // The source of heights, which is part of the recipe.
  void reliefChanged();
  // What is to be seen: with the recipe, or because something is tried.
  void shownChanged();
  // Modification, steps, channels or name.
  void stateChanged();

private:
  // Numbers of their own for each content that pixels, recipe and selection ever had.
  struct Content {
    int pixels = 0, recipe = 0, selection = 0;
    bool operator==(const Content&) const = default;
  };
  // One step: what to exchange with the document to go back, or forth again. planes: the bytes of
  // `pixelArea`, of the image (of a deep one in 8 bits and as it is) and then of each channel.
  struct Step {
    QString name;
    Content content;
    Recipe recipe;
    QRect area;
    MaskChange mask;
    QRect pixelArea; // empty when the pixels stay
    std::vector<std::vector<uint8_t>> planes;
    size_t bytes() const;
  };
  struct Buffer {
    uint8_t* data;
    size_t pixelBytes;
  };

  Content _content() const;
  std::vector<Buffer> _buffers();
  Step _stepBack(const QString& name, const QRect& pixelArea);
  CVResult _light(const GoOn& goOn);
  void _record(Step step);
  void _move(std::deque<Step>& from, std::deque<Step>& to);
  void _exchange(Step& step);
  void _notePixels();
  CVResult _run(const Filter& filter);
  CVResult _changePixels(const QString& step, const std::function<CVResult()>& change);

  Original _original;
  std::shared_mutex _lock;
  int _originalNumber = 0;
  QString _path, _originalPath;
  bool _mayBeReplaced = false;
  bool _isOverwritten = false; // the file that was opened has other pixels by now
  Selection _selection;
  Recipe _recipe, _lastLit;
  std::optional<Recipe> _tried;
  std::deque<Step> _undo, _redo;
  Content _present, _saved;
  Digests _digests;
  int _lastNumber = 0;
};

} // namespace editor
