// The mouse and the keys as drags and filters see them.
#include "SampleDialog.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <ctime>
#include <gtest/gtest.h>

namespace {

constexpr short MOUSE_EVENTS = (1 << mouseDown) | (1 << mouseUp);

// What a drag loop of the usual kind has seen.
struct Drag {
  std::vector<Point> places;
  Point last;
  int rounds = 0;
};

void FollowMouse(Drag& drag) {
  const auto look = [&] {
    GetMouse(&drag.last);
    if (drag.places.empty() || !EqualPt(drag.places.back(), drag.last))
      drag.places.push_back(drag.last);
  };
  while (StillDown()) {
    ++drag.rounds;
    look();
  }
  look();
}

Drag FollowMouse() {
  Drag drag;
  FollowMouse(drag);
  return drag;
}

// Waits for the press that a script sends.
void WaitForPress() {
  EventRecord event;
  ASSERT_TRUE(TakeEvent(1 << mouseDown, &event, 10000));
}

TEST(Input, ADragSeesEveryPlaceAndEndsAtTheRelease) {
  SampleDialog sample;
  ToolboxScript script;
  Drag drag;
  const auto seen = [&](size_t places) {
    return [&, places] { return drag.places.size() == places; };
  };
  script.Press(30, 40).Await(seen(1)).MoveTo(50, 60).Await(seen(2)).MoveTo(-20, 500).Await(seen(3));
  script.Release(70, 80).MoveTo(10, 10).Start();
  WaitForPress();
  FollowMouse(drag);
  const std::vector<Point> expected = {{40, 30}, {60, 50}, {500, -20}, {80, 70}};
  ASSERT_EQ(drag.places.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i)
    EXPECT_TRUE(EqualPt(drag.places[i], expected[i])) << i;
  // The mouse goes on; the drag's end stays where it was until the next event is taken.
  RunEvents(330);
  Point mouse;
  GetMouse(&mouse);
  EXPECT_TRUE(EqualPt(mouse, Point{80, 70}));
  EventRecord event;
  while (TakeEvent(MOUSE_EVENTS, &event, 0)) {
  }
  GetMouse(&mouse);
  EXPECT_TRUE(EqualPt(mouse, Point{10, 10}));
}

TEST(Input, AClickThatIsOverBeforeTheDragStartsIsStillOne) {
  SampleDialog sample;
  ToolboxScript script;
  script.Click(33, 44).MoveTo(1, 1).Start();
  AwaitEnd(script);
  WaitForPress();
  const Drag drag = FollowMouse();
  EXPECT_EQ(drag.rounds, 0);
  EXPECT_TRUE(EqualPt(drag.last, Point{44, 33}));
}

TEST(Input, AHeldButtonCostsNextToNothing) {
  SampleDialog sample;
  ToolboxScript script;
  script.Press(30, 40).Wait(1200).Release(30, 40).Start();
  WaitForPress();
  QElapsedTimer elapsed;
  elapsed.start();
  const std::clock_t before = std::clock();
  const Drag drag = FollowMouse();
  const double processor = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
  const double seconds = static_cast<double>(elapsed.elapsed()) / 1000;
  EXPECT_GT(seconds, 1.0);
  EXPECT_LT(processor / seconds, 0.5);
  EXPECT_LT(drag.rounds, 200);
}

struct Ending {
  const char* name;
  std::function<void(ToolboxScript&, QWidget&)> end;
  bool hitsCancel;
};

const Ending ENDINGS[] = {
    {"its window closes", [](ToolboxScript& script, QWidget&) { script.CloseWindow(); }, true},
    {"the host's window closes",
     [](ToolboxScript& script, QWidget& host) { script.Call([&host] { host.close(); }); }, false},
    {"the program quits",
     [](ToolboxScript& script, QWidget&) { script.Call([] { QCoreApplication::quit(); }); }, true},
};

void ExpectDragEnds(const Ending& ending) {
  QWidget host;
  host.show();
  SampleDialog sample;
  ToolboxScript script;
  script.Press(30, 40);
  ending.end(script, host);
  script.Start();
  WaitForPress();
  QElapsedTimer elapsed;
  elapsed.start();
  while (StillDown() && elapsed.elapsed() < 60000) {
  }
  EXPECT_LT(elapsed.elapsed(), 60000) << ending.name;
  if (!ending.hitsCancel)
    return;
  EXPECT_EQ(HitItem(), CANCEL_ITEM) << ending.name;
}

TEST(Input, ADragEndsWhen) {
  for (const Ending& ending : ENDINGS) {
    // As in a host that runs its own loop of events, which alone can be quit.
    QTimer start;
    start.setSingleShot(true);
    QObject::connect(&start, &QTimer::timeout, [&] {
      ExpectDragEnds(ending);
      QCoreApplication::exit();
    });
    start.start(0);
    QCoreApplication::exec();
  }
}

} // namespace
