// Plays the host's side of one scene for the engine, straight at the engine's own functions.
#pragma once

#include "LM_globals.h"
#include "SceneGenerator.h"

#include <cstdint>
#include <memory>
#include <vector>

// The scene's light as the engine holds it, without caches.
LM_light_UI ToEngine(const ReferenceLight& light);

// Releases what a settings object owns, and the object.
struct GlobalsDeleter {
  void operator()(LM_globals* globals) const { LM_DestroyGlobals(globals); }
};
using GlobalsPointer = std::unique_ptr<LM_globals, GlobalsDeleter>;

// One document, made of the scene's picture and, as channel 4, its heights; and one settings object
// with the scene's settings. The scene must outlive the run. One run at a time: the host's
// callbacks carry no context.
class EngineRun {
public:
  explicit EngineRun(const Scene& scene);
  ~EngineRun();
  EngineRun(const EngineRun&) = delete;
  EngineRun& operator=(const EngineRun&) = delete;

  // Walks the tiles of the area as a real run does. The picture, the source around the area.
  std::vector<uint8_t> RenderTiles();

  // Fits the area into a frame of frameSize x frameSize and collects the reduced picture and
  // channel. False when the engine refuses.
  bool CollectPreview(int frameSize);
  // The lit preview, packed, at the geometry that CollectPreview chose.
  std::vector<uint8_t> RenderPreview();
  // The frame map's pixel.
  const uint8_t* FramePixel(int row, int column) const;
  // What the plain shader makes of it.
  std::vector<uint8_t> ReferencePreview() const;

  // Fills the record's input and output pointers with what it asks for.
  void Deliver();
  // Converts the settings into the parameter block.
  foo* Convert(LM_bool preview);

  GlobalsPointer globals;
  FilterRecord record{};
  std::vector<uint8_t> out; // the document's picture

private:
  const Scene& scene;
  // Exactly the delivered bytes, so that a stray read is caught.
  std::vector<uint8_t> input, mask;
};

// The selection that a document has when its record says so: any byte for any pixel.
uint8_t MaskAt(int x, int y);

// Fails the running test with the first differing pixel.
void ExpectSamePicture(const std::vector<uint8_t>& expected, const std::vector<uint8_t>& actual,
                       int width);
