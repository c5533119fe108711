// A folder of a test's own, and the File Manager's names for it.
#pragma once

#include "MacFiles.h"
#include "MacStrings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

class TemporaryFolder : public testing::Test {
protected:
  void SetUp() override {
    std::string pattern = std::filesystem::temp_directory_path() / "toolbox-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = std::filesystem::canonical(pattern);
    ASSERT_EQ(TB_SetDefaultDirectory(folder.native()), noErr);
    WDPBRec defaults{};
    ASSERT_EQ(PBHGetVol(&defaults, 0), noErr);
    volume = defaults.ioWDVRefNum;
    id = defaults.ioWDDirID;
  }
  void TearDown() override {
    TB_SetDefaultDirectory("");
    std::filesystem::remove_all(folder);
  }

  void WriteFile(const std::string& name, const std::string& content) const {
    std::ofstream(folder / name, std::ios::binary) << content;
  }
  std::string ReadFile(const std::string& name) const {
    std::ifstream file(folder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  OSErr Create(std::string_view name) const { return HCreate(volume, id, TB_PString(name), 0, 0); }
  OSErr Open(std::string_view name, int8_t permission, int16_t* file) const {
    return HOpen(volume, id, TB_PString(name), permission, file);
  }
  // The result of opening alone.
  OSErr TryOpen(std::string_view name, int8_t permission) const {
    int16_t file = 0;
    const OSErr err = Open(name, permission, &file);
    EXPECT_EQ(file > 0, err == noErr) << name;
    EXPECT_EQ(FSClose(file), err == noErr ? noErr : rfNumErr) << name;
    return err;
  }
  // The names by index, as far as they go.
  std::vector<std::string> ListNames() const {
    std::vector<std::string> names;
    HParamBlockRec block{};
    Str255 name;
    for (;;) {
      block.fileParam = {name, volume, static_cast<int16_t>(names.size() + 1), id};
      if (const OSErr result = PBHGetFInfo(&block, 0); result != noErr) {
        EXPECT_EQ(result, fnfErr);
        return names;
      }
      names.push_back(TB_StdString(name));
    }
  }

  std::filesystem::path folder;
  int16_t volume = 0;
  int32_t id = 0;
};
