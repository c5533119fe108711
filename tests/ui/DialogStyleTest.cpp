// The style menu in use: saving, replacing, loading and deleting, and every way to decline.
#include "DialogRun.h"

#include "DialogWindow.h"
#include "Events.h"
#include "LM_gallery.h"
#include "LM_mac_stream.h"
#include "MacFiles.h"
#include "MacStrings.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <algorithm>
#include <fstream>
#include <initializer_list>

namespace {

constexpr int DIALOG_OPENS = 40; // milliseconds until a small dialog is there

class DialogStyles : public DialogRun {
protected:
  // Types a name over what the name dialog offers, and presses Return.
  static void SaveAs(ToolboxScript& script, const char* name) {
    ClickItem(script, LM_SAVE_STYLE_ITEM);
    script.Wait(DIALOG_OPENS).Type(name).KeyPress(kReturnKeyCode).Wait(KEY_ANSWERED);
  }
  static void Confirm(ToolboxScript& script, int16_t dialog) {
    ClickItem(script, 2, dialog);
    script.Wait(DIALOG_OPENS);
  }
  // Chooses the entry that lies `downs` below the present one.
  static void ChooseStyle(ToolboxScript& script, int downs) {
    ClickItem(script, LM_STYLE_ITEM);
    script.Wait(DIALOG_OPENS).ChooseFromMenu(downs).Wait(DIALOG_OPENS);
  }
  void OnlyStyles(std::initializer_list<std::pair<const char*, int16_t>> styles) const {
    // As a user's folder that the program has been at before.
    std::filesystem::create_directories(StylePath(""));
    std::ofstream memory(folder / "limn" / "bundled-styles");
    for (const auto& name : LM_BundledStyleNames())
      memory << name << "\n";
    for (const auto& [name, gloss] : styles)
      WriteStyle(name, gloss);
  }
  std::vector<std::string> MenuTexts() const {
    std::vector<std::string> texts;
    const MenuHandle menu = LM_PopupMenu(Dialog(), LM_STYLE_ITEM);
    for (int16_t i = 1; i <= CountMenuItems(menu); ++i) {
      Str255 text;
      GetMenuItemText(menu, i, text);
      texts.push_back(TB_StdString(text));
    }
    return texts;
  }
};

using Names = std::vector<std::string>;

TEST_F(DialogStyles, TheMenuListsTheDefaultFirstAndPassesOverForeignFiles) {
  OnlyStyles({{"alpha", 1}, {"Default", 2}, {"Beta", 3}});
  std::ofstream(StylePath("readme.txt")) << "not a style";
  std::filesystem::create_directory(StylePath("folder"));
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      EXPECT_EQ(MenuTexts(), (Names{"Default", "alpha", "Beta"}));
      EXPECT_EQ(Globals()->gloss, 2);
    });
  });
}

TEST_F(DialogStyles, AFolderOfForeignFilesGivesAnEmptyMenu) {
  OnlyStyles({});
  std::ofstream(StylePath("Default")) << "not a style";
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      EXPECT_TRUE(MenuTexts().empty());
      EXPECT_EQ(Globals()->StyleIndex(), 0);
      EXPECT_EQ(Globals()->gloss, 128) << "the built-in settings";
      EXPECT_TRUE(LM_ItemIsDisabled(Dialog(), LM_DELETE_STYLE_ITEM));
    });
    // The foreign file may be chosen to be replaced, but never is.
    SaveAs(script, "Default");
    Confirm(script, LM_OVERWRITE_DIALOG);
    script.Call([&] { EXPECT_EQ(answers.alerts, std::vector<int16_t>{16007}); });
  });
  EXPECT_EQ(Bytes("Default"), "not a style");
}

TEST_F(DialogStyles, WithoutADefaultStyleTheFirstOneIsLoaded) {
  OnlyStyles({{"beta", 2}, {"alpha", 1}});
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      EXPECT_EQ(Globals()->gloss, 1);
      EXPECT_EQ(Globals()->StyleIndex(), 1);
      EXPECT_FALSE(LM_ItemIsDisabled(Dialog(), LM_DELETE_STYLE_ITEM));
    });
  });
}

TEST_F(DialogStyles, SavingANewStyleChoosesIt) {
  OnlyStyles({{"Default", 2}, {"zebra", 3}});
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] { Globals()->gloss = 55; });
    ClickItem(script, LM_SAVE_STYLE_ITEM);
    script.Wait(DIALOG_OPENS).Call([&] {
      int16_t type = 0;
      Handle handle = nullptr;
      Str255 text;
      GetDialogItem(FrontWindow(), 4, &type, &handle, nullptr);
      GetDialogItemText(handle, text);
      EXPECT_EQ(TB_StdString(text), "Default") << "the chosen name is offered";
    });
    script.Type("mine").KeyPress(kReturnKeyCode).Wait(KEY_ANSWERED);
    script.Call([&] {
      EXPECT_EQ(MenuTexts(), (Names{"Default", "mine", "zebra"}));
      EXPECT_EQ(PopupText(LM_STYLE_ITEM), "mine");
      EXPECT_EQ(Globals()->StyleIndex(), 2);
      EXPECT_FALSE(LM_ItemIsDisabled(Dialog(), LM_DELETE_STYLE_ITEM));
      EXPECT_TRUE(answers.alerts.empty());
    });
  });
  EXPECT_EQ(StyleFiles(), (Names{"Default", "mine", "zebra"}));
}

TEST_F(DialogStyles, NamesAreCutAndLoseAFullStopInFront) {
  const std::string longName(40, 'n');
  OnlyStyles({{"Default", 2}});
  RunAndCancel([&](ToolboxScript& script) {
    SaveAs(script, longName.c_str());
    script.Call([&] { EXPECT_EQ(PopupText(LM_STYLE_ITEM), longName.substr(0, 31)); });
    SaveAs(script, ".hidden.too");
    script.Call([&] {
      EXPECT_EQ(PopupText(LM_STYLE_ITEM), "*hidden.too");
      EXPECT_TRUE(answers.alerts.empty());
    });
  });
  EXPECT_EQ(StyleFiles(), (Names{"*hidden.too", "Default", longName.substr(0, 31)}));
}

struct Decline {
  const char* name;
  void (*act)(ToolboxScript&);
};
// On the button that confirms, released beside it.
void PressAndChangeOnesMind(ToolboxScript& script) {
  const Point button = MiddleOf(2, LM_OVERWRITE_DIALOG);
  script.Drag(button.h, button.v, button.h, 10);
}
void PressKeyInConfirmation(int key) {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (!widget->isVisible() || widget->windowTitle() == "Lighting")
      continue;
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
    return;
  }
  ADD_FAILURE() << "there is no confirmation";
}
const Decline DECLINES[] = {
    {"Return", [](ToolboxScript& s) { s.KeyPress(kReturnKeyCode); }},
    {"Enter", [](ToolboxScript& s) { s.KeyPress(kEnterKeyCode); }},
    {"Escape", [](ToolboxScript& s) { s.KeyPress(kEscapeKeyCode); }},
    {"Command and full stop",
     [](ToolboxScript& s) { s.KeyDown(kCommandKeyCode).Type(".").KeyUp(kCommandKeyCode); }},
    {"its button", [](ToolboxScript& s) { ClickItem(s, 1, LM_OVERWRITE_DIALOG); }},
    {"closing the window", [](ToolboxScript& s) { s.CloseWindow().Wait(500); }},
    {"closing it after a press",
     [](ToolboxScript& s) {
       PressAndChangeOnesMind(s);
       s.CloseWindow().Wait(500);
     }},
    {"closing it while the button is pressed",
     [](ToolboxScript& s) {
       const Point button = MiddleOf(2, LM_OVERWRITE_DIALOG);
       s.Press(button.h, button.v).Wait(60).CloseWindow().Wait(500).Release(button.h, button.v);
     }},
    {"the space bar after a press",
     [](ToolboxScript& s) {
       PressAndChangeOnesMind(s);
       s.Call([] { PressKeyInConfirmation(Qt::Key_F6); });
       s.Call([] { PressKeyInConfirmation(Qt::Key_Space); }).Wait(KEY_ANSWERED);
     }},
};

TEST_F(DialogStyles, OnlyAClickReplaces) {
  OnlyStyles({{"Default", 2}, {"mine", 3}});
  const std::string old = Bytes("mine");
  for (const Decline& decline : DECLINES) {
    RunAndCancel([&](ToolboxScript& script) {
      script.Call([&] { Globals()->gloss = 99; });
      SaveAs(script, "mine");
      decline.act(script);
      // Back at the name, which stands there as it was typed.
      script.Wait(KEY_ANSWERED).Call([&, decline] {
        EXPECT_NE(FrontWindow(), Dialog()) << decline.name;
        EXPECT_EQ(DialogWindow::Of(FrontWindow())->items.size(), 5U) << decline.name;
      });
      script.KeyPress(kEscapeKeyCode).Wait(KEY_ANSWERED);
    });
    EXPECT_EQ(Bytes("mine"), old) << decline.name;
  }
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] { Globals()->gloss = 99; });
    SaveAs(script, "mine");
    Confirm(script, LM_OVERWRITE_DIALOG);
    script.Call([&] {
      EXPECT_EQ(MenuTexts(), (Names{"Default", "mine"}));
      EXPECT_EQ(Globals()->StyleIndex(), 2);
    });
  });
  EXPECT_NE(Bytes("mine"), old);
  EXPECT_EQ(StyleFiles(), (Names{"Default", "mine"}));
}

TEST_F(DialogStyles, ALockedStyleIsNeitherReplacedNorDeleted) {
  OnlyStyles({{"Default", 2}, {"locked", 3}});
  const std::string old = Bytes("locked");
  std::filesystem::permissions(StylePath("locked"), std::filesystem::perms::owner_read);
  RunAndCancel([&](ToolboxScript& script) {
    SaveAs(script, "locked");
    Confirm(script, LM_OVERWRITE_DIALOG);
    script.Call([&] {
      EXPECT_EQ(answers.alerts, std::vector<int16_t>{16010});
      EXPECT_NE(FrontWindow(), Dialog()) << "the name is asked again";
    });
    script.KeyPress(kEscapeKeyCode).Wait(KEY_ANSWERED);
    ChooseStyle(script, 1);
    ClickItem(script, LM_DELETE_STYLE_ITEM);
    script.Wait(DIALOG_OPENS).Call([&] {
      EXPECT_EQ(answers.alerts, (std::vector<int16_t>{16010, 16009}));
      EXPECT_EQ(FrontWindow(), Dialog());
      EXPECT_EQ(Globals()->gloss, 3);
    });
  });
  EXPECT_EQ(Bytes("locked"), old);
}

TEST_F(DialogStyles, ChoosingAStyleLoadsItAndCutsItsChannel) {
  OnlyStyles({{"Default", 2}, {"mine", 3}});
  WriteStyle("beyond", 4, 5); // the document has four channels
  WriteStyle("relief", 5, 4);
  RunAndCancel([&](ToolboxScript& script) {
    ChooseStyle(script, 3);
    script.Call([&] {
      EXPECT_EQ(Globals()->gloss, 5);
      EXPECT_EQ(Globals()->BumpChannel(), 4);
      EXPECT_EQ(PopupText(LM_BUMP_CHANNEL_ITEM), "Height");
    });
    ChooseStyle(script, 2); // round the end
    script.Call([&] {
      EXPECT_EQ(Globals()->gloss, 4);
      EXPECT_EQ(Globals()->BumpChannel(), 0);
      EXPECT_EQ(PopupText(LM_BUMP_CHANNEL_ITEM), "None");
    });
    ChooseStyle(script, 1);
    script.Call([&] {
      EXPECT_EQ(Globals()->gloss, 3);
      EXPECT_EQ(LM_ControlValue(Dialog(), LM_GLOSS_ITEM), 3);
      EXPECT_EQ(Globals()->StyleIndex(), 3);
      Globals()->gloss = 50;
    });
    // The same one again: nothing happens.
    ChooseStyle(script, 0);
    script.Call([&] {
      EXPECT_EQ(Globals()->gloss, 50);
      std::ofstream(StylePath("Default")) << "broken";
    });
    ChooseStyle(script, 2); // round to the first
    script.Call([&] {
      EXPECT_EQ(answers.alerts, std::vector<int16_t>{16008});
      EXPECT_EQ(Globals()->gloss, 50);
      EXPECT_EQ(Globals()->StyleIndex(), 3);
    });
  });
}

TEST_F(DialogStyles, DeletingGoesBackToTheOpeningStyle) {
  OnlyStyles({{"Default", 2}, {"mine", 3}, {"other", 4}});
  for (const Decline& decline : DECLINES) {
    RunAndCancel([&](ToolboxScript& script) {
      ChooseStyle(script, 1);
      ClickItem(script, LM_DELETE_STYLE_ITEM);
      script.Wait(DIALOG_OPENS);
      decline.act(script);
      script.Wait(KEY_ANSWERED).Call([&] { EXPECT_EQ(Globals()->gloss, 3) << decline.name; });
    });
    EXPECT_TRUE(std::filesystem::exists(StylePath("mine"))) << decline.name;
  }
  RunAndCancel([&](ToolboxScript& script) {
    ChooseStyle(script, 1);
    ClickItem(script, LM_DELETE_STYLE_ITEM);
    script.Wait(DIALOG_OPENS);
    Confirm(script, LM_DELETE_DIALOG);
    script.Call([&] {
      EXPECT_EQ(MenuTexts(), (Names{"Default", "other"}));
      EXPECT_EQ(PopupText(LM_STYLE_ITEM), "Default");
      EXPECT_EQ(Globals()->gloss, 2);
      EXPECT_EQ(LM_ControlValue(Dialog(), LM_GLOSS_ITEM), 2);
      EXPECT_EQ(Globals()->StyleIndex(), 2) << "left as it was";
      EXPECT_TRUE(LM_ItemIsDisabled(Dialog(), LM_DELETE_STYLE_ITEM));
    });
    ChooseStyle(script, 1); // where the deleted one stood
    script.Call([&] { EXPECT_EQ(Globals()->gloss, 4); });
  });
  EXPECT_FALSE(std::filesystem::exists(StylePath("mine")));
}

TEST_F(DialogStyles, SavingAsksAboutTheStyleThatTheMenuShows) {
  OnlyStyles({{"Default", 2}, {"MINE", 3}});
  for (const char* name : {"Default", "MINE"}) {
    const std::string old = Bytes(name);
    RunAndCancel([&](ToolboxScript& script) {
      script.Call([&] { Globals()->gloss = 99; });
      SaveAs(script, std::string(name) == "MINE" ? "mine" : "default");
      Confirm(script, LM_OVERWRITE_DIALOG);
      script.Call([&, name] {
        EXPECT_EQ(MenuTexts(), (Names{"Default", "MINE"}));
        EXPECT_EQ(PopupText(LM_STYLE_ITEM), name);
      });
    });
    EXPECT_NE(Bytes(name), old) << name;
  }
  EXPECT_EQ(StyleFiles(), (Names{"Default", "MINE"}));
}

TEST_F(DialogStyles, StylesThatDifferByCaseAloneAreToldApart) {
  OnlyStyles({{"Default", 2}, {"default", 3}, {"MINE", 4}, {"mine", 5}});
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      EXPECT_EQ(MenuTexts(), (Names{"Default", "default", "MINE", "mine"}));
      EXPECT_EQ(Globals()->gloss, 2);
    });
    ChooseStyle(script, 1);
    script.Call([&] {
      EXPECT_EQ(Globals()->gloss, 3);
      EXPECT_FALSE(LM_ItemIsDisabled(Dialog(), LM_DELETE_STYLE_ITEM)) << "it is the user's";
    });
    ChooseStyle(script, 2);
    script.Call([&] { EXPECT_EQ(Globals()->gloss, 5); });
    ClickItem(script, LM_DELETE_STYLE_ITEM);
    script.Wait(DIALOG_OPENS);
    Confirm(script, LM_DELETE_DIALOG);
    script.Call([&] { EXPECT_EQ(MenuTexts(), (Names{"Default", "default", "MINE"})); });
  });
  EXPECT_EQ(StyleFiles(), (Names{"Default", "MINE", "default"}));
}

TEST_F(DialogStyles, AFolderThatCannotBeMadeGivesAnEmptyMenuAndAnAlert) {
  std::ofstream(folder / "limn") << "in the way";
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] { EXPECT_TRUE(MenuTexts().empty()); });
    SaveAs(script, "mine");
    script.Call([&] {
      EXPECT_EQ(answers.alerts, std::vector<int16_t>{16007});
      EXPECT_EQ(FrontWindow(), Dialog());
    });
  });
  std::filesystem::remove(folder / "limn");
}

TEST_F(DialogStyles, SecondDialogKeepsTheChoiceAndForgetsOneThatIsGone) {
  OnlyStyles({{"Default", 2}, {"mine", 3}, {"other", 4}});
  ToolboxScript first;
  ChooseStyle(first, 1);
  first.KeyPress(kReturnKeyCode);
  ASSERT_EQ(Run(first), 0);
  ToolboxScript second;
  second.Call([&] {
    EXPECT_EQ(PopupText(LM_STYLE_ITEM), "mine");
    EXPECT_EQ(Globals()->gloss, 3);
  });
  ClickItem(second, LM_DELETE_STYLE_ITEM);
  second.Wait(DIALOG_OPENS);
  Confirm(second, LM_DELETE_DIALOG);
  second.KeyPress(kReturnKeyCode);
  ASSERT_EQ(Run(second), 0);
  ToolboxScript third; // another style stands where the deleted one stood
  third.Call([&] { EXPECT_EQ(Globals()->gloss, 2); });
  ChooseStyle(third, 0);
  third.Call([&] { EXPECT_EQ(Globals()->gloss, 4) << PopupText(LM_STYLE_ITEM); });
  third.KeyPress(kReturnKeyCode);
  ASSERT_EQ(Run(third), 0);
  std::filesystem::remove(StylePath("other"));
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      EXPECT_EQ(Globals()->StyleIndex(), 0);
      EXPECT_EQ(Globals()->gloss, 4);
    });
  });
}

} // namespace
