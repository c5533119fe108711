// The user's library: seeding it once, listing it, and replacing a style without losing one.
#include "LM_gallery.h"
#include "StyleFolder.h"
#include "TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <ctime>

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

TEST_F(StyleLibrary, BeginsWithTheBundledStylesAndTheDefaultOneFirst) {
  Use();
  const std::vector<LM_listed_style> styles = LM_ListStyles();
  const std::vector<std::string> bundled = LM_BundledStyleNames();
  ASSERT_EQ(styles.size(), bundled.size());
  EXPECT_EQ(styles[0].name, "Default");
  for (size_t i = 0; i < styles.size(); ++i) {
    EXPECT_EQ(styles[i].name, bundled[i]);
    EXPECT_TRUE(styles[i].loads && styles[i].why.empty()) << styles[i].name;
  }
  EXPECT_EQ(LM_StyleFolderPath(), Style("").parent_path().native());
  LM_style style;
  EXPECT_TRUE(LM_BundledStyle("default", style));
  EXPECT_FALSE(LM_BundledStyle("no such style", style));
}

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

TEST_F(StyleLibrary, ListsWhatTheMenuListsAndTellsWhatWouldNotLoad) {
  Use();
  Write("broken", StyleBytes(1).substr(0, 40));
  Write("foreign.txt", "no style");
  Write("empty", "");
  Write("zebra", StyleBytes(2));
  Write(std::string(40, 'n'), StyleBytes(3));
  Write(".hidden", StyleBytes(4));
  std::filesystem::create_directory(Style("folder"));
  std::vector<std::string> indexed;
  Str255 name;
  while (LM_style_istream::IndexedInfo(static_cast<int16_t>(indexed.size()), name) != 0)
    indexed.push_back(TB_StdString(name));
  EXPECT_EQ(LM_StyleNames(), indexed);
  const std::vector<LM_listed_style> styles = LM_ListStyles();
  ASSERT_EQ(styles.size(), indexed.size());
  EXPECT_EQ(styles.size(), LM_BundledStyleNames().size() + 2);
  EXPECT_EQ(styles[0].name, "Default");
  for (const LM_listed_style& style : styles)
    EXPECT_EQ(style.loads, style.name != "broken") << style.name;
  EXPECT_EQ(styles.back().name, "zebra");
  EXPECT_EQ(styles.back().style.gloss, 2);
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

// Listing reads each file once: the work grows with the files, not with their square.
TEST_F(StyleLibrary, ListingCostsTheSameForEachFile) {
  Use();
  const std::string bytes = StyleBytes(5);
  double perFile[2] = {};
  int written = 0;
  for (const int count : {100, 1000}) {
    for (; written < count; ++written)
      Write("style " + std::to_string(written), bytes);
    std::filesystem::last_write_time(Style(""), std::filesystem::file_time_type::clock::now() -
                                                    std::chrono::seconds(5));
    const std::clock_t before = std::clock();
    const size_t listed = LM_ListStyles().size();
    EXPECT_EQ(listed, static_cast<size_t>(count) + LM_BundledStyleNames().size());
    perFile[count == 1000] = static_cast<double>(std::clock() - before) / listed;
  }
  EXPECT_LT(perFile[1], perFile[0] * 4) << "ten times the files";
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
