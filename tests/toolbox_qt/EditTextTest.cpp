// The edit field, and a whole conversation with a dialog that has one.
#include "SampleDialog.h"

#include "MacStrings.h"

#include <QLineEdit>
#include <gtest/gtest.h>

namespace {

Handle Field(const SampleDialog& sample) {
  Handle handle = nullptr;
  GetDialogItem(sample.dialog, FIELD_ITEM, nullptr, &handle, nullptr);
  return handle;
}

std::string FieldText(const SampleDialog& sample) {
  Str255 text;
  GetDialogItemText(Field(sample), text);
  return TB_StdString(text);
}

struct Typing {
  const char* name;
  short start, end; // of the selection
  const char* typed;
  const char* text;
};

TEST(EditText, TypingReplacesTheSelection) {
  constexpr Typing CASES[] = {{"all", 0, 32767, "Dawn", "Dawn"},
                              {"the first letter", 0, 1, "R", "Rusk"},
                              {"beyond the end", 400, 500, "y", "Dusky"},
                              {"nothing typed", 0, 32767, "", "Dusk"}};
  for (const Typing& typing : CASES) {
    SampleDialog sample(NAME_DIALOG);
    SetDialogItemText(Field(sample), TB_PString("Dusk"));
    SelectDialogItemText(sample.dialog, FIELD_ITEM, typing.start, typing.end);
    ToolboxScript script;
    script.Wait(30).Type(typing.typed).KeyPress(kReturnKeyCode).Start();
    EXPECT_EQ(HitItem(), OK_ITEM) << typing.name;
    EXPECT_EQ(FieldText(sample), typing.text) << typing.name;
  }
}

TEST(EditText, HoldsAnyTextThatFits) {
  SampleDialog sample(NAME_DIALOG);
  EXPECT_EQ(FieldText(sample), "Dusk");
  const std::string longest(255, 'x');
  for (const std::string& text : {std::string(), std::string("Größe ½ — 夕暮れ"), longest}) {
    SetDialogItemText(Field(sample), TB_PString(text));
    EXPECT_EQ(FieldText(sample), text);
  }
  Str255 other;
  GetDialogItemText(nullptr, other);
  EXPECT_EQ(other[0], 0);
  SetDialogItemText(nullptr, TB_PString("nowhere"));
}

TEST(EditText, TheFieldIsARealOneWithANameForScreenReaders) {
  SampleDialog sample(NAME_DIALOG);
  const auto* field = TB_PortWindow(sample.dialog)->findChild<QLineEdit*>();
  ASSERT_NE(field, nullptr);
  EXPECT_TRUE(field->isVisible());
  EXPECT_EQ(field->accessibleName(), "Name");
}

} // namespace
