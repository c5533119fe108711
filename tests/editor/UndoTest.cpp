// The document's steps, without a window.
#include "EditorDocument.h"

#include "style_source.h"

#include <gtest/gtest.h>

namespace {

using editor::EditorDocument;
using editor::OpenedImage;

constexpr int WIDTH = 7, HEIGHT = 5;

OpenedImage Picture() {
  OpenedImage image;
  image.path = "picture.png";
  image.photograph.width = WIDTH;
  image.photograph.height = HEIGHT;
  image.photograph.numPlanes = 3;
  for (int i = 0; i < WIDTH * HEIGHT * 3; ++i)
    image.photograph.pixels.push_back(static_cast<uint8_t>(i));
  return image;
}

// Adds to every byte of the area, in the image and in all further channels.
CVResult Brighten(CVDocument& document, CVRect area) {
  for (int index = 0; index < document.channelCount(); ++index) {
    const CVChannelView<uint8_t> channel = document.channel(index);
    for (int y = area.top; y < area.bottom; ++y)
      for (int x = area.left; x < area.right; ++x)
        channel.data[static_cast<size_t>(y) * channel.rowStride +
                     static_cast<size_t>(x) * channel.pixelStep] += 9;
  }
  return {};
}

bool GoOn(double) {
  return true;
}

} // namespace

// Any walk back and forth ends at the same bytes.
TEST(Undo, GoesBackAndForthThroughLightPixelsAndSelections) {
  EditorDocument document;
  document.setImage(Picture());
  ASSERT_TRUE(document.addChannel(
      {"heights.png", WIDTH, HEIGHT, std::vector<uint8_t>(WIDTH * HEIGHT, 100), {}}));
  QImage mask(WIDTH, HEIGHT, QImage::Format_Grayscale8);
  mask.fill(255);
  mask.scanLine(2)[3] = 80;
  QImage painted = mask;
  painted.scanLine(1)[1] = 7;
  const LM_style campfire = limn::FindStyle("Campfire").style;
  const LM_style moon = limn::FindStyle("Blue Moonlight").style;
  const auto bake = [&] { EXPECT_TRUE(document.bake("Bake", GoOn).ok()); };
  const auto brighten = [&] { EXPECT_TRUE(document.change("Brighten", Brighten, GoOn).ok()); };
  const struct {
    const char* step;
    std::function<void()> change;
  } changes[] = {
      {"Style", [&] { document.keepLights(campfire, "Style"); }},
      {"Selection",
       [&] {
         document.select({QRect(2, 1, 3, 2), {}});
       }},
      {"Bake", bake},
      {"Selection",
       [&] {
         document.select({{}, mask});
       }},
      {"Move Light", [&] { document.keepLights(moon, "Move Light"); }},
      {"Selection",
       [&] {
         document.select({QRect(1, 1, 5, 3), painted});
       }},
      {"Brighten", brighten},
      {"Selection", [&] { document.select({}); }},
      {"Source",
       [&] {
         editor::Recipe recipe = document.withLights(campfire);
         recipe.relief.kind = LM_height_kind::Luminance;
         document.keep(recipe, "Source");
       }},
      {"Brighten", brighten},
  };
  struct State {
    std::vector<uint8_t> lit, pixels, heights;
    QRect area;
    QImage mask;
    bool modified;
    bool operator==(const State&) const = default;
  };
  const auto state = [&] {
    return State{limn::DecodedPixels(document.litPlanes()),
                 document.photograph().pixels,
                 document.original().channels[0].pixels,
                 document.selection().area,
                 document.selection().mask,
                 document.isModified()};
  };
  std::vector<State> states = {state()};
  for (const auto& change : changes) {
    change.change();
    EXPECT_EQ(document.undoName(), change.step);
    states.push_back(state());
    EXPECT_FALSE(states.back() == states[states.size() - 2]) << change.step;
  }
  EXPECT_FALSE(document.canRedo());
  size_t at = states.size() - 1;
  uint32_t random = 7;
  for (int step = 0; step < 300; ++step) {
    random = random * 1664525 + 1013904223;
    const bool back = at > 0 && (at + 1 == states.size() || (random >> 31) != 0);
    ASSERT_TRUE(back ? document.canUndo() : document.canRedo());
    back ? document.undo() : document.redo();
    at += back ? -1 : 1;
    ASSERT_TRUE(state() == states[at]) << "at " << at << " after " << step;
  }
}

TEST(Undo, AHundredStepsOfLightAndAStrokeAreSmall) {
  EditorDocument document;
  OpenedImage image;
  image.photograph.width = 3000;
  image.photograph.height = 2000;
  image.photograph.numPlanes = 3;
  image.photograph.pixels.resize(size_t{3000} * 2000 * 3);
  document.setImage(std::move(image));
  LM_style style = limn::FindStyle("Campfire").style;
  QImage mask(3000, 2000, QImage::Format_Grayscale8);
  mask.fill(0);
  for (int i = 0; i < 100; ++i) {
    style.gloss = static_cast<int16_t>(i);
    document.keepLights(style, "Gloss");
    for (int y = 0; y < 50; ++y)
      mask.scanLine(10 * i + y)[20 * i] = 200;
    document.select({{}, mask});
  }
  EXPECT_LT(document.undoBytes(), size_t{1} << 20);
  while (document.canUndo())
    document.undo();
  EXPECT_FALSE(document.recipe().isLit());
  EXPECT_TRUE(document.selection().mask.isNull());
}

TEST(Undo, AFailedChangeIsNoStep) {
  constexpr int SIDE = 1500;
  for (const VipsBandFormat depth : {VIPS_FORMAT_UCHAR, VIPS_FORMAT_USHORT}) {
    EditorDocument document;
    OpenedImage image;
    image.photograph.width = image.photograph.height = SIDE;
    image.photograph.numPlanes = 3;
    image.photograph.depth = depth;
    image.photograph.pixels.resize(size_t{SIDE} * SIDE * 3, 77);
    if (depth == VIPS_FORMAT_USHORT)
      image.photograph.deep.resize(image.photograph.pixels.size() * 2, 77);
    document.setImage(std::move(image));
    document.keepLights(limn::FindStyle("Campfire").style, "Style");
    document.keepLights(limn::FindStyle("Blue Moonlight").style, "Style");
    document.undo();
    const std::vector<uint8_t> before = limn::DecodedPixels(document.litPlanes());
    const std::vector<uint8_t> pixels = document.photograph().pixels;
    for (const double end : {0.0, 0.3}) {
      EXPECT_EQ(document.bake("Bake", [&](double share) { return share < end; }).outcome,
                CVOutcome::Cancelled);
      const auto stop = [](CVDocument& image, CVRect area) {
        Brighten(image, area);
        return CVResult{CVOutcome::Cancelled, 0, "cancelled"};
      };
      EXPECT_FALSE(document.change("Stop", stop, [&](double share) { return share < end; }).ok());
      EXPECT_FALSE(document.change("Stop", stop, GoOn).ok());
      EXPECT_EQ(document.photograph().pixels, pixels);
      EXPECT_EQ(limn::DecodedPixels(document.litPlanes()), before);
      EXPECT_EQ(document.undoName(), "Style");
      EXPECT_TRUE(document.canRedo()) << "what was taken back is still there";
    }
    ASSERT_TRUE(document.bake("Bake", GoOn).ok());
    EXPECT_NE(document.photograph().pixels, pixels);
    EXPECT_EQ(limn::DecodedPixels(document.litPlanes()), before);
  }
}

TEST(Undo, ModificationFollowsTheSavedState) {
  const LM_style campfire = limn::FindStyle("Campfire").style;
  EditorDocument document;
  document.setImage(Picture());
  document.select({QRect(1, 1, 3, 3), {}});
  EXPECT_FALSE(document.isModified()) << "what is selected shows in nothing";
  document.keepLights(campfire, "Style");
  document.noteSaved("lit.png");
  EXPECT_FALSE(document.isModified());
  document.select({});
  EXPECT_TRUE(document.isModified()) << "the light falls elsewhere";
  document.undo();
  EXPECT_FALSE(document.isModified());
  document.undo();
  EXPECT_TRUE(document.isModified());
  document.redo();
  EXPECT_FALSE(document.isModified());
  document.tryLights(limn::FindStyle("Blue Moonlight").style);
  EXPECT_FALSE(document.isModified()) << "what is tried is not kept";
  document.undo();
  document.keepLights(campfire, "Style");
  EXPECT_TRUE(document.isModified()) << "another change than the one saved";
  ASSERT_TRUE(document.bake("Bake", GoOn).ok());
  document.noteSaved("lit.png");
  document.undo();
  EXPECT_TRUE(document.isModified());
}

TEST(Undo, StepsAreBoundedByTheirMemory) {
  EditorDocument document;
  OpenedImage image;
  image.photograph.width = 8000;
  image.photograph.height = 5000;
  image.photograph.numPlanes = 3;
  image.photograph.pixels.resize(size_t{8000} * 5000 * 3);
  const size_t bytes = image.photograph.pixels.size();
  document.setImage(std::move(image));
  const size_t most = (EditorDocument::UNDO_BYTES - 100'000) / bytes;
  for (size_t i = 0; i < most + 2; ++i)
    ASSERT_TRUE(document
                    .change(
                        "Nothing", [](CVDocument&, CVRect) { return CVResult{}; }, GoOn)
                    .ok());
  size_t steps = 0;
  for (; document.canUndo(); document.undo())
    ++steps;
  EXPECT_EQ(steps, most);
}
