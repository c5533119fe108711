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
