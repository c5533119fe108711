// How names become file names, and back.
#include "TB_FileNames.h"

#include <gtest/gtest.h>
#include <map>

using namespace std::string_literals;

TEST(FileName, HarmfulNamesStayInTheirFolder) {
  const std::pair<std::string, std::string> cases[] = {
      {"Sunset", "Sunset"},
      {"Soirée d’été 100%", "Soirée d’été 100%"},
      {".hidden", ".hidden"},
      {"a/b", "a%2Fb"},
      {"../../etc/passwd", "..%2F..%2Fetc%2Fpasswd"},
      {"/dev/null", "%2Fdev%2Fnull"},
      {".", "%2E"},
      {"..", "%2E."},
      {"...", "..."},
      {"a\0b"s, "a%00b"},
      {"bell\x07\x1b[2J", "bell%07%1B[2J"},
      {"delete\x7f", "delete%7F"},
      {"next\xc2\x85line", "next%C2%85line"},
      {"bad\xff\xc3", "bad%FF%C3"},
      {"overlong\xc0\xaf", "overlong%C0%AF"},
      {"surrogate\xed\xa0\x80", "surrogate%ED%A0%80"},
      {"%2F", "%252F"},
      {"%%2F", "%%252F"},
      {"%25", "%2525"},
      {"%2f %41 %", "%2f %41 %"},
  };
  for (const auto& [name, fileName] : cases) {
    EXPECT_EQ(TB_FileNameFor(name), fileName);
    EXPECT_EQ(TB_NameForFile(fileName), name);
  }
  EXPECT_EQ(TB_FileNameFor(""), std::nullopt);
  EXPECT_TRUE(TB_FileNameFor(std::string(255, 'x')));
  EXPECT_EQ(TB_FileNameFor(std::string(86, '/')), std::nullopt) << "longer than file names can be";
}

TEST(FileName, NoTwoNamesShareAFile) {
  // Every text of up to four of the characters that matter.
  const std::string characters = "%2F5./E\n";
  std::map<std::string, std::string> owners;
  std::vector<std::string> names{""};
  for (size_t i = 0; i < names.size(); ++i) {
    const std::string name = names[i];
    if (!name.empty()) {
      const std::string fileName = TB_FileNameFor(name).value();
      EXPECT_TRUE(owners.emplace(fileName, name).second) << name << " and " << owners[fileName];
      EXPECT_EQ(TB_NameForFile(fileName), name);
      EXPECT_EQ(fileName.find_first_of("/\n"), std::string::npos);
      EXPECT_TRUE(fileName != "." && fileName != "..");
    }
    for (char next : name.size() < 4 ? characters : "") {
      names.push_back(name + next);
    }
  }
  EXPECT_EQ(owners.size(), 8U + 64 + 512 + 4096);
}
