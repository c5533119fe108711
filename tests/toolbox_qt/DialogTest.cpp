// Layouts from resources, items, the modal loop and its filter.
#include "SampleDialog.h"

#include "Input.h"
#include "MacStrings.h"
#include "ToolboxDesktop.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

TEST(Dialog, ItemsAreAsTheResourceSaysAndNoOthers) {
  SampleDialog sample(SAMPLE_DIALOG, false);
  const std::pair<int16_t, int16_t> types[] = {{OK_ITEM, 4},
                                               {OUTLINE_ITEM, 0},
                                               {CHECK_ITEM, 5},
                                               {SLIDER_ITEM, 7},
                                               {TEXT_ITEM, 8 | 128},
                                               {DISABLED_ITEM, 128},
                                               {0, 0},
                                               {-1, 0},
                                               {11, 0},
                                               {32767, 0}};
  for (const auto& [item, expected] : types) {
    int16_t type = -1;
    Handle handle = ItemHandleOf(nullptr);
    Rect box = {1, 1, 1, 1};
    GetDialogItem(sample.dialog, item, &type, &handle, &box);
    EXPECT_EQ(type, expected) << item;
    const bool isThere = item > 0 && item <= BOX_ITEM;
    EXPECT_TRUE(isThere || handle == nullptr) << item;
    EXPECT_NE(EmptyRect(&box) != 0, isThere) << item;
  }
}

TEST(Dialog, ALayoutThatMakesNoSenseMakesNoDialog) {
  UseSampleResources();
  for (int16_t number = 910; number <= 917; ++number)
    EXPECT_EQ(GetNewDialog(number, nullptr, nullptr), nullptr) << number;
}

std::vector<int16_t>& Drawn() {
  static std::vector<int16_t> drawn;
  return drawn;
}

void DrawNoted(DialogPtr dialog, int16_t item) {
  GrafPtr port;
  GetPort(&port);
  EXPECT_EQ(port, dialog);
  Drawn().push_back(item);
  Rect box;
  GetDialogItem(dialog, item, nullptr, nullptr, &box);
  InsetRect(&box, -3, -3);
  PaintRect(&box);
}

void Install(const SampleDialog& sample, int16_t item) {
  int16_t type;
  Rect box;
  GetDialogItem(sample.dialog, item, &type, nullptr, &box);
  SetDialogItem(sample.dialog, item, type, ItemHandleOf(DrawNoted), &box);
}

TEST(Dialog, UpdatesDrawOnlyWhatTheRegionTouches) {
  SampleDialog sample;
  Install(sample, WELL_ITEM);
  Install(sample, BOX_ITEM);
  Drawn().clear();
  DrawDialog(sample.dialog);
  EXPECT_EQ(Drawn(), std::vector<int16_t>({WELL_ITEM, BOX_ITEM}));
  const QImage before = TB_PortImage(sample.dialog);
  Drawn().clear();
  RgnHandle region = NewRgn();
  const Rect box = sample.Box(WELL_ITEM);
  RectRgn(region, &box);
  UpdateDialog(sample.dialog, region);
  DisposeRgn(region);
  EXPECT_EQ(Drawn()[0], WELL_ITEM);
  EXPECT_EQ(TB_PortImage(sample.dialog), before) << "an update of a drawn dialog changes nothing";
}

struct HitCase {
  const char* name;
  int16_t clicked;
  int16_t hit;
};

TEST(Dialog, ClicksHitEnabledItems) {
  constexpr HitCase CASES[] = {{"button", CANCEL_ITEM, CANCEL_ITEM},
                               {"check box", CHECK_ITEM, CHECK_ITEM},
                               {"user item", WELL_ITEM, WELL_ITEM},
                               {"a disabled item", DISABLED_ITEM, OK_ITEM},
                               {"static text", TEXT_ITEM, OK_ITEM}};
  SampleDialog sample;
  for (const HitCase& hit : CASES) {
    // Whatever does not end the loop is followed by a click on OK.
    const Point place = sample.Middle(hit.clicked);
    const Point okay = sample.Middle(OK_ITEM);
    ToolboxScript script;
    script.Click(place.h, place.v).Click(okay.h, okay.v).Start();
    EXPECT_EQ(HitItem(), hit.hit) << hit.name;
    AwaitEnd(script);
    FlushEvents();
  }
  EXPECT_EQ(GetControlValue(sample.Control(CHECK_ITEM)), 1) << "a check box is its owner's to set";
}

std::vector<uint16_t>& FilteredEvents() {
  static std::vector<uint16_t> events;
  return events;
}

Boolean NoteAndConsumePresses(DialogPtr dialog, EventRecord* event, int16_t* item) {
  EXPECT_EQ(dialog, FrontWindow());
  EXPECT_EQ(*item, 0);
  FilteredEvents().push_back(event->what);
  if (event->what != mouseDown)
    return 0;
  Point place = event->where;
  GlobalToLocal(&place);
  *item = static_cast<int16_t>(place.h);
  return 1;
}

TEST(Dialog, TheFilterComesFirst) {
  SampleDialog sample;
  FilteredEvents().clear();
  const Point okay = sample.Middle(OK_ITEM);
  ToolboxScript script;
  script.Click(okay.h, okay.v).Click(0, 5).KeyPress(kEscapeKeyCode).Start();
  EXPECT_EQ(HitItem(NoteAndConsumePresses), okay.h) << "the item the filter set";
  EXPECT_EQ(HitItem(NoteAndConsumePresses), 0)
      << "a consumed event without an item ends the call too";
  EXPECT_EQ(HitItem(NoteAndConsumePresses), CANCEL_ITEM)
      << "what the filter leaves is the dialog's";
  EXPECT_EQ(FilteredEvents().back(), keyDown);
}

std::vector<uint16_t>& HostEvents() {
  static std::vector<uint16_t> events;
  return events;
}

TEST(Dialog, AMovableDialogKeepsItsHostAlive) {
  SampleDialog sample;
  Handle resource = GetResource(CV_FOUR_CHARS('D', 'L', 'O', 'G'), SAMPLE_DIALOG);
  ASSERT_NE(resource, nullptr);
  CenterDialog(resource);
  EXPECT_TRUE(SetUpMoveableModal(resource, CV_HOST_SIGNATURE));
  EXPECT_FALSE(SetUpMoveableModal(resource, CV_FOUR_CHARS('n', 'o', 'n', 'e')));
  EXPECT_EQ(GetResource(CV_FOUR_CHARS('D', 'L', 'O', 'G'), 17), nullptr);
  EXPECT_EQ(ResError(), resNotFound);
  HostEvents().clear();
  ToolboxScript script;
  script.Wait(700).KeyPress(kReturnKeyCode).Start();
  int16_t item = 0;
  const auto note = [](void* event) {
    HostEvents().push_back(static_cast<EventRecord*>(event)->what);
  };
  MoveableModalDialog(note, nullptr, &item);
  EXPECT_EQ(item, OK_ITEM);
  EXPECT_NE(std::count(HostEvents().begin(), HostEvents().end(), nullEvent), 0);
  EXPECT_NE(std::count(HostEvents().begin(), HostEvents().end(), keyDown), 0);
}

TEST(Dialog, ACentredDialogOpensOverTheWindowInFront) {
  UseSampleResources();
  QWidget host;
  host.setGeometry(30, 40, 700, 500);
  host.show();
  host.activateWindow();
  RunEvents(60);
  for (bool centred : {true, false}) {
    Handle resource = GetResource(CV_FOUR_CHARS('D', 'L', 'O', 'G'), NAME_DIALOG);
    if (centred)
      CenterDialog(resource);
    SampleDialog sample(NAME_DIALOG);
    const QPoint offset =
        TB_PortWindow(sample.dialog)->geometry().center() - host.geometry().center();
    EXPECT_EQ(std::abs(offset.x()) <= 2 && std::abs(offset.y()) <= 2, centred);
  }
}

TEST(Dialog, AClipLeftBehindDoesNotStopUpdates) {
  SampleDialog sample;
  Install(sample, WELL_ITEM);
  const Rect corner = {0, 0, 5, 5};
  ClipRect(&corner);
  Drawn().clear();
  const Rect box = sample.Box(WELL_ITEM);
  RequestUpdate(*sample.dialog->state, ToQRect(box));
  const Point okay = sample.Middle(OK_ITEM);
  ToolboxScript script;
  script.Wait(200).Click(okay.h, okay.v).Start();
  EXPECT_EQ(HitItem(), OK_ITEM);
  EXPECT_GE(Drawn().size(), 1u);
  EXPECT_LE(Drawn().size(), 3u) << "the same update again and again";
}

TEST(Dialog, AFlashShowsThePressedButton) {
  SampleDialog sample;
  const QImage plain = TB_PortImage(sample.dialog);
  QImage flashed;
  ToolboxScript script;
  script.Call([&] { flashed = TB_PortImage(sample.dialog); }).Start();
  QElapsedTimer elapsed;
  elapsed.start();
  FlashDialogButton(sample.dialog, OK_ITEM);
  EXPECT_GE(elapsed.elapsed(), 100);
  EXPECT_FALSE(flashed.isNull());
  EXPECT_NE(flashed, plain);
  EXPECT_EQ(TB_PortImage(sample.dialog), plain);
}

TEST(Dialog, AuxiliaryRecordsAndDisposedWindows) {
  AuxWinHandle record = nullptr;
  DialogPtr gone = nullptr;
  {
    SampleDialog sample;
    gone = sample.dialog;
    ASSERT_TRUE(GetAuxWin(sample.dialog, &record));
    (**record).awRefCon = 4711;
    AuxWinHandle again = nullptr;
    GetAuxWin(sample.dialog, &again);
    EXPECT_EQ((**again).awRefCon, 4711);
    AuxCtlHandle of = nullptr;
    ASSERT_TRUE(GetAuxCtl(sample.Control(CHECK_ITEM), &of));
    EXPECT_FALSE(GetAuxCtl(nullptr, &of));
    EXPECT_EQ(FrontWindow(), sample.dialog);
  }
  EXPECT_FALSE(GetAuxWin(gone, &record));
  EXPECT_EQ(FrontWindow(), nullptr);
  DrawDialog(gone);
  DisposeDialog(gone);
  EXPECT_EQ(HitItem(), -1);
}

TEST(Dialog, AnAlertIsAWindowThatAnyKeyOfItsOwnEnds) {
  SampleDialog sample;
  for (short code : {kReturnKeyCode, kEscapeKeyCode}) {
    QString shown;
    ToolboxScript script;
    script.Wait(50).Call([&] {
      const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      shown = box != nullptr ? box->text() : QString();
    });
    script.KeyPress(code).Start();
    EXPECT_EQ(StopAlert(16009, nullptr), 1);
    EXPECT_TRUE(shown.contains("Dusk")) << shown.toStdString();
    AwaitEnd(script);
  }
}

} // namespace
