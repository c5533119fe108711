// Opening, reading, writing and replacing files.
#include "TemporaryFolder.h"

#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

using FileTest = TemporaryFolder;

TEST_F(FileTest, WrittenBytesAreReadBackUpToTheEnd) {
  int16_t file = 0;
  int32_t count = 8;
  ASSERT_EQ(Create("a style"), noErr);
  ASSERT_EQ(Open("a style", fsRdWrPerm, &file), noErr);
  EXPECT_EQ(FSWrite(file, &count, "hello world"), noErr);
  EXPECT_EQ(count, 8);
  EXPECT_EQ(FSClose(file), noErr);
  EXPECT_EQ(ReadFile("a style"), "hello wo");

  ASSERT_EQ(Open("a style", fsRdPerm, &file), noErr);
  int32_t length = 0;
  EXPECT_EQ(GetEOF(file, &length), noErr);
  EXPECT_EQ(length, 8);
  char buffer[16] = {};
  EXPECT_EQ(FSRead(file, &(count = 5), buffer), noErr);
  EXPECT_EQ(FSRead(file, &(count = 5), buffer + 5), eofErr);
  EXPECT_EQ(count, 3);
  EXPECT_STREQ(buffer, "hello wo");
  EXPECT_EQ(FSRead(file, &(count = 1), buffer), eofErr);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(FSRead(file, &(count = -1), buffer), paramErr);
  EXPECT_EQ(FSWrite(file, &(count = 1), "x"), wrPermErr);
  EXPECT_EQ(FSClose(file), noErr);
}

TEST_F(FileTest, WhatMayBeOpened) {
  WriteFile("plain", "x");
  WriteFile("locked", "x");
  WriteFile("target", "x");
  chmod((folder / "locked").c_str(), 0444);
  mkdir((folder / "inner").c_str(), 0777);
  mkfifo((folder / "pipe").c_str(), 0666);
  std::filesystem::create_symlink("target", folder / "link");
  std::filesystem::create_symlink("nowhere", folder / "dangling");
  std::filesystem::create_symlink("/dev/null", folder / "device");
  struct Case {
    const char* name;
    OSErr reading, writing, creating;
  };
  const Case cases[] = {
      {"plain", noErr, noErr, dupFNErr},
      {"locked", noErr, permErr, dupFNErr},
      {"inner", notAFileErr, notAFileErr, dupFNErr},
      {"pipe", notAFileErr, notAFileErr, dupFNErr},
      {"link", noErr, permErr, dupFNErr},
      {"dangling", fnfErr, permErr, dupFNErr},
      {"device", notAFileErr, permErr, dupFNErr},
      {"missing", fnfErr, fnfErr, noErr},
      {"", bdNamErr, bdNamErr, bdNamErr},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(TryOpen(c.name, fsRdPerm), c.reading) << c.name;
    EXPECT_EQ(TryOpen(c.name, fsWrPerm), c.writing) << c.name;
    EXPECT_EQ(TryOpen(c.name, fsRdWrPerm), c.writing) << c.name;
    EXPECT_EQ(Create(c.name), c.creating) << c.name;
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
  int16_t file = 0;
  EXPECT_EQ(HOpen(volume, id, nullptr, fsRdPerm, &file), bdNamErr);
  EXPECT_EQ(HOpen(volume, 999999, TB_PString("plain"), fsRdPerm, &file), dirNFErr);
  EXPECT_EQ(HOpen(-7, id, TB_PString("plain"), fsRdPerm, &file), nsvErr);
}

TEST_F(FileTest, WhatMayBeDeleted) {
  for (const char* name : {"..%2Fplain", "locked", "target"}) {
    WriteFile(name, name);
  }
  chmod((folder / "locked").c_str(), 0444);
  mkdir((folder / "inner").c_str(), 0777);
  std::filesystem::create_symlink("target", folder / "link");
  EXPECT_EQ(HDelete(volume, id, TB_PString("locked")), fLckdErr);
  EXPECT_EQ(HDelete(volume, id, TB_PString("inner")), notAFileErr);
  EXPECT_EQ(HDelete(volume, id, TB_PString("missing")), fnfErr);
  EXPECT_EQ(HDelete(volume, id, TB_PString("link")), noErr);
  EXPECT_EQ(ReadFile("target"), "target");
  EXPECT_EQ(HDelete(volume, id, TB_PString("../plain")), noErr);
  EXPECT_FALSE(std::filesystem::exists(folder / "..%2Fplain"));
}

TEST_F(FileTest, AReferenceIsGoneAfterItsFile) {
  WriteFile("a", "x");
  std::set<int16_t> seen;
  int32_t count = 1;
  char byte = 0;
  for (int i = 0; i < 600; ++i) {
    int16_t file = 0;
    ASSERT_EQ(Open("a", fsRdPerm, &file), noErr);
    ASSERT_TRUE(seen.insert(file).second) << "reference " << file << " given out again";
    ASSERT_EQ(FSClose(file), noErr);
    ASSERT_EQ(FSClose(file), rfNumErr);
    ASSERT_EQ(FSRead(file, &(count = 1), &byte), rfNumErr);
  }
  for (int16_t file : {INT16_MIN, -1, 0, 1, 255, 256, INT16_MAX}) {
    EXPECT_EQ(FSRead(file, &(count = 1), &byte), rfNumErr) << file;
  }
}

TEST_F(FileTest, AProgramStartedMeanwhileInheritsNoFile) {
  WriteFile("a", "x");
  int16_t file = 0;
  ASSERT_EQ(Open("a", fsRdWrPerm, &file), noErr);
  int found = 0;
  for (int descriptor = 3; descriptor < 256; ++descriptor) {
    struct stat ours;
    struct stat other;
    if (fstat(descriptor, &other) == 0 && stat((folder / "a").c_str(), &ours) == 0 &&
        ours.st_ino == other.st_ino && ours.st_dev == other.st_dev) {
      ++found;
      EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    }
  }
  EXPECT_EQ(found, 1);
  EXPECT_EQ(FSClose(file), noErr);
}

TEST_F(FileTest, TheTableOfFilesIsBounded) {
  WriteFile("a", "x");
  std::vector<int16_t> files;
  int16_t file = 0;
  OSErr err = noErr;
  while (files.size() < 1000 && (err = Open("a", fsRdPerm, &file)) == noErr) {
    files.push_back(file);
  }
  EXPECT_EQ(err, tmfoErr);
  EXPECT_EQ(file, 0);
  EXPECT_EQ(files.size(), 256U);
  for (int16_t open : files) {
    EXPECT_EQ(FSClose(open), noErr);
  }
  EXPECT_EQ(TryOpen("a", fsRdPerm), noErr);
}
