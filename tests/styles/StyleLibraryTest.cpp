// The user's library: seeding it once, listing it, and replacing a style without losing one.
#include "LM_gallery.h"
#include "StyleFolder.h"
#include "TemporaryFolder.h"

#include <algorithm>

namespace {

class StyleLibrary : public StyleFolder<TemporaryFolder> {
protected:
  void TearDown() override {
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
    std::string why;
    LM_UseStyleLibrary(why); // a failed library must not follow the next test
    StyleFolder::TearDown();
  }
};

TEST_F(StyleLibrary, ADeletedStyleStaysDeletedAndOnlyNewOnesAreAdded) {
  Use();
  std::filesystem::remove(Style("Default"));
  const std::string temporary = ".limn-7-0123456789abcdef.tmp";
  Write(temporary, "given up");
  Write(".limn-notes", "the user's");
  Write(temporary + ".old", "the user's");
  Use();
  EXPECT_FALSE(std::filesystem::exists(Style(temporary)));
  EXPECT_TRUE(std::filesystem::exists(Style(".limn-notes")));
  EXPECT_TRUE(std::filesystem::exists(Style(temporary + ".old")));
  EXPECT_FALSE(std::filesystem::exists(Style("Default")));
  const std::filesystem::path memory = folder / "limn" / "bundled-styles";
  std::string why;
  std::filesystem::rename(memory, folder / "away");
  std::filesystem::create_directory(memory);
  EXPECT_TRUE(LM_UseStyleLibrary(why));
  EXPECT_NE(why, "");
  EXPECT_FALSE(std::filesystem::exists(Style("Default"))) << "what was deleted cannot be known";
  std::filesystem::remove(memory);
  std::filesystem::rename(folder / "away", memory);
  // As if an earlier version had known no style but one that the user deleted.
  std::ofstream(memory) << "Something Old\n";
  Write("Default", "mine");
  Use();
  EXPECT_EQ(Bytes("Default"), "mine") << "a file of the user's own stays";
  std::ifstream read(memory);
  std::string first;
  std::getline(read, first);
  EXPECT_EQ(first, "Something Old") << "what was known stays known";
}

TEST_F(StyleLibrary, WithoutAFolderEveryOperationFailsAndNothingIsWrittenElsewhere) {
  std::ofstream(folder / "limn") << "in the way";
  ASSERT_EQ(TB_SetDefaultDirectory(folder.native()), noErr);
  std::string why;
  EXPECT_FALSE(LM_UseStyleLibrary(why));
  EXPECT_NE(why.find((folder / "limn").native()), std::string::npos) << why;
  TB_Str255 name = TB_PString("New");
  EXPECT_EQ(LM_SaveStyle(name.bytes, settings), 0);
  EXPECT_EQ(LM_LoadStyle(name.bytes, settings), 0);
  EXPECT_FALSE(Replace("New"));
  EXPECT_TRUE(LM_ListStyles().empty());
  EXPECT_EQ(LM_style_istream::IndexedInfo(0, name.bytes), 0);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
  std::filesystem::remove(folder / "limn");
  Use();
}

TEST_F(StyleLibrary, NamesThatDifferByCaseAndMarksStandForOneStyle) {
  Use();
  Write("Zébra", StyleBytes(9));
  TB_Str255 name = TB_PString("zEBRA");
  EXPECT_EQ(LM_SaveStyle(name.bytes, settings), 0);
  name = TB_PString("zebra");
  EXPECT_EQ(LM_AddStyle(name.bytes, settings), 0);
  EXPECT_TRUE(Replace("zebra"));
  EXPECT_NE(Bytes("Zébra"), StyleBytes(9));
  // Both are there: each stands for itself, and goes by itself.
  Write("zEBRA", StyleBytes(7));
  LM_style style;
  std::string why;
  ASSERT_TRUE(LM_ReadLibraryStyle("zEBRA", style, why)) << why;
  EXPECT_EQ(style.gloss, 7);
  name = TB_PString("zebra");
  EXPECT_EQ(LM_DeleteStyle(name.bytes), 0) << "of two, the one that was named";
  name = TB_PString("zEBRA");
  EXPECT_EQ(LM_DeleteStyle(name.bytes), 1);
  EXPECT_TRUE(std::filesystem::exists(Style("Zébra")));
  // A bundled style does not join one of the user's.
  std::filesystem::rename(Style("Campfire"), Style("campfire"));
  std::ofstream(folder / "limn" / "bundled-styles") << "Something Old\n";
  Use();
  EXPECT_FALSE(std::filesystem::exists(Style("Campfire")));
}

TEST_F(StyleLibrary, NeverReplacesWhatIsNoStyleNorFollowsALinkNorLetsOthersRead) {
  Use();
  Write("notes", "my notes");
  EXPECT_FALSE(Replace("notes"));
  EXPECT_EQ(Bytes("notes"), "my notes");
  WriteFile("outside", StyleBytes(9));
  std::filesystem::create_symlink(folder / "outside", Style("link"));
  TB_Str255 link = TB_PString("link");
  EXPECT_EQ(LM_style_ostream::IsLocked(link.bytes), 1);
  Replace("link");
  EXPECT_EQ(ReadFile("outside"), StyleBytes(9)) << "written through the link";
  using std::filesystem::perms;
  Write("mine alone", StyleBytes(9));
  std::filesystem::permissions(Style("mine alone"), perms::owner_read | perms::owner_write);
  EXPECT_TRUE(Replace("mine alone"));
  EXPECT_NE(Bytes("mine alone"), StyleBytes(9));
  EXPECT_EQ(std::filesystem::status(Style("mine alone")).permissions(),
            perms::owner_read | perms::owner_write);
  // Names that would lead elsewhere stay inside.
  for (const char* name : {"..", "../up", "a/b", "/etc/x", "\x01\x02", "CON", "\xff\xfe"}) {
    TB_Str255 text = TB_PString(name);
    EXPECT_EQ(LM_SaveStyle(text.bytes, settings), 1) << name;
    EXPECT_EQ(LM_LoadStyle(text.bytes, settings), 1) << name;
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 2);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "limn"), {}), 2);
}

} // namespace
