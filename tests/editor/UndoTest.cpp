// The document's steps, without a window.
#include "EditorDocument.h"

#include "style_source.h"

#include "LM_style_lighting.h"

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

} // namespace

TEST(Undo, GoesBackAndForthThroughPixelsAndSelections) {
  EditorDocument document;
  document.setImage(Picture());
  ASSERT_TRUE(document.addChannel(
      {"heights.png", WIDTH, HEIGHT, std::vector<uint8_t>(WIDTH * HEIGHT, 100), {}}));
  QImage mask(WIDTH, HEIGHT, QImage::Format_Grayscale8);
  mask.fill(80);
  const std::vector<std::function<void()>> changes = {
      [&] { EXPECT_TRUE(document.change(Brighten).ok()); },
      [&] {
        document.select({QRect(2, 1, 3, 2), {}});
      },
      [&] { EXPECT_TRUE(document.change(Brighten).ok()); },
      [&] {
        document.select({{}, mask});
      },
      [&] { EXPECT_TRUE(document.change(Brighten).ok()); },
      [&] { document.select({}); },
  };
  const auto heights = [&] {
    int sum = 0;
    document.change([&](CVDocument& image, CVRect) {
      const CVChannelView<uint8_t> channel = image.channel(3);
      for (int i = 0; i < WIDTH * HEIGHT; ++i)
        sum += channel.data[i];
      return CVResult{CVOutcome::Cancelled, 0, ""};
    });
    return sum;
  };
  struct State {
    std::vector<uint8_t> pixels;
    int heights;
    editor::Selection selection;
    bool modified;
    bool operator==(const State&) const = default;
  };
  const auto state = [&] {
    return State{document.photograph().pixels, heights(), document.selection(),
                 document.isModified()};
  };
  std::vector<State> states = {state()};
  for (const auto& change : changes) {
    change();
    states.push_back(state());
    EXPECT_FALSE(states.back() == states[states.size() - 2]);
  }
  for (int round = 0; round < 2; ++round) {
    for (size_t i = changes.size(); i-- > 0;) {
      ASSERT_TRUE(document.canUndo());
      document.undo();
      EXPECT_TRUE(state() == states[i]) << "back to " << i;
    }
    EXPECT_FALSE(document.canUndo());
    for (size_t i = 1; i <= changes.size(); ++i) {
      document.redo();
      EXPECT_TRUE(state() == states[i]) << "forth to " << i;
    }
    EXPECT_FALSE(document.canRedo());
  }
}

TEST(Undo, AFailedChangeIsNoStep) {
  EditorDocument document;
  document.setImage(Picture());
  ASSERT_TRUE(document.change(Brighten).ok());
  document.undo();
  EXPECT_FALSE(document
                   .change([](CVDocument&, CVRect) {
                     return CVResult{CVOutcome::Cancelled, 0, "cancelled"};
                   })
                   .ok());
  EXPECT_FALSE(document.canUndo());
  EXPECT_TRUE(document.canRedo()) << "what was taken back is still there";
  EXPECT_FALSE(document.isModified());

  constexpr int SIDE = 1500;
  OpenedImage deep;
  deep.photograph.width = deep.photograph.height = SIDE;
  deep.photograph.numPlanes = 3;
  deep.photograph.depth = VIPS_FORMAT_USHORT;
  deep.photograph.pixels.resize(size_t{SIDE} * SIDE * 3, 77);
  deep.photograph.deep.resize(deep.photograph.pixels.size() * 2, 77);
  const std::vector<uint8_t> before = deep.photograph.deep;
  document.setImage(std::move(deep));
  const auto parameters = std::make_shared<foo>();
  const LM_style style = limn::FindStyle("Campfire").style;
  ASSERT_TRUE(LM_ParametersFromStyle(style, SIDE, SIDE, 3, parameters.get()));
  for (const double end : {0.0, 0.3, 2.0}) {
    const CVResult result = document.light(parameters, [&](double share) { return share < end; });
    EXPECT_EQ(result.outcome, end > 1 ? CVOutcome::Done : CVOutcome::Cancelled) << end;
    EXPECT_EQ(document.photograph().deep != before, end > 1);
    EXPECT_EQ(document.canUndo(), end > 1);
  }
}

TEST(Undo, ModificationFollowsTheSavedState) {
  EditorDocument document;
  document.setImage(Picture());
  ASSERT_TRUE(document.change(Brighten).ok());
  document.noteSaved("lit.png");
  EXPECT_FALSE(document.isModified());
  document.undo();
  EXPECT_TRUE(document.isModified());
  document.redo();
  EXPECT_FALSE(document.isModified());
  document.undo();
  ASSERT_TRUE(document.change(Brighten).ok());
  EXPECT_TRUE(document.isModified()) << "another change than the one saved";
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
  const size_t most = EditorDocument::UNDO_BYTES / bytes;
  for (size_t i = 0; i < most + 2; ++i)
    ASSERT_TRUE(document.change([](CVDocument&, CVRect) { return CVResult{}; }).ok());
  size_t steps = 0;
  for (; document.canUndo(); document.undo())
    ++steps;
  EXPECT_EQ(steps, most);
}
