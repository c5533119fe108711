// Folders: the default one, creation, look-up and listing.
#include "TemporaryFolder.h"

#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using FolderTest = TemporaryFolder;

TEST_F(FolderTest, AFolderInTheDefaultOneIsMadeOnceAndFound) {
  EXPECT_EQ(TB_SetDefaultDirectory((folder / "missing").native()), dirNFErr);
  ASSERT_EQ(TB_SetDefaultDirectory(folder.native() + "/."), noErr);
  WDPBRec defaults{};
  ASSERT_EQ(PBHGetVol(&defaults, 0), noErr);
  EXPECT_EQ(defaults.ioWDDirID, id);

  TB_Str255 wanted = TB_PString("Lighting Styles");
  CInfoPBRec block{};
  auto lookUp = [&] {
    block.hFileInfo = {wanted.bytes, defaults.ioWDVRefNum, 0, defaults.ioWDDirID};
    return PBGetCatInfo(&block, 0);
  };
  EXPECT_EQ(lookUp(), fnfErr);
  int32_t created = 0;
  ASSERT_EQ(DirCreate(volume, 0, wanted, &created), noErr);
  EXPECT_EQ(DirCreate(volume, id, wanted, &created), dupFNErr);
  ASSERT_EQ(lookUp(), noErr);
  EXPECT_EQ(block.hFileInfo.ioFlAttrib & kFolderBit, kFolderBit);
  EXPECT_EQ(block.hFileInfo.ioDirID, created);
  EXPECT_EQ(TB_PathOf(volume, created, TB_PString("a/b")), folder / "Lighting Styles" / "a%2Fb");
  EXPECT_EQ(TB_PathOf(volume, created, nullptr), folder / "Lighting Styles");
  EXPECT_EQ(TB_PathOf(volume, 15, nullptr), "");

  WriteFile("Lighting Styles/x", "123");
  wanted = TB_PString("x");
  block.hFileInfo = {wanted.bytes, volume, 0, created};
  ASSERT_EQ(PBGetCatInfo(&block, 0), noErr);
  EXPECT_EQ(block.hFileInfo.ioFlAttrib & kFolderBit, 0);
}

TEST_F(FolderTest, ListsRegularFilesInAlphabeticalOrder) {
  for (const char* name : {"zebra", "Élan", "apple", "Zoo", "Apple", "echo", "élan", "100%", "Über",
                           "%2F", "%41", "needless%2Edot", "line\nbreak", ".hidden", "bad\xff"}) {
    WriteFile(name, "");
  }
  mkdir((folder / "folder").c_str(), 0777);
  mkfifo((folder / "pipe").c_str(), 0666);
  std::filesystem::create_symlink("zebra", folder / "link");
  std::filesystem::create_symlink("nowhere", folder / "dangling");
  const std::vector<std::string> names = ListNames();
  EXPECT_EQ(names, (std::vector<std::string>{"%41", "/", "100%", "Apple", "apple", "echo", "Élan",
                                             "élan", "link", "Über", "zebra", "Zoo"}));
  for (const std::string& name : names) {
    EXPECT_EQ(TryOpen(name, fsRdPerm), noErr) << name;
  }
}

// A file system whose clock ticks slowly: the folder's time of change stays as it was.
TEST_F(FolderTest, AListingShowsEveryChangeAtOnce) {
  auto setTime = [&](timespec time) {
    const timespec times[2] = {time, time};
    ASSERT_EQ(utimensat(AT_FDCWD, folder.c_str(), times, 0), 0);
  };
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  setTime(now);
  EXPECT_EQ(ListNames().size(), 0U);
  WriteFile("other", "");
  setTime(now);
  EXPECT_EQ(ListNames().size(), 1U) << "added by someone else a moment after the listing";
  std::filesystem::remove(folder / "other");
  EXPECT_EQ(ListNames().size(), 0U) << "removed by someone else";

  // Long after a change a listing is kept, so our own changes must give it up.
  const timespec longAgo{1000000000, 0};
  setTime(longAgo);
  EXPECT_EQ(ListNames().size(), 0U);
  auto expectNames = [&](const std::vector<std::string>& names) {
    setTime(longAgo);
    EXPECT_EQ(ListNames(), names);
  };
  Create("a");
  expectNames({"a"});
  HDelete(volume, id, TB_PString("a"));
  expectNames({});
}
