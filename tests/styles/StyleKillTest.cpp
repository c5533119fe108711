// Saving a style while processes are killed, and while others save, read and sweep: every read sees
// a whole style, and every save that is let be succeeds.
#include "StyleFolder.h"
#include "TemporaryFolder.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <random>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool isDeep = false;

class StyleKill : public StyleFolder<TemporaryFolder> {
protected:
  void SetUp() override {
    StyleFolder::SetUp();
    Use();
    for (std::string& bytes : whole) {
      ++settings->gloss;
      ASSERT_TRUE(Replace("Mine"));
      bytes = Bytes("Mine");
    }
    ASSERT_NE(whole[0], whole[1]);
  }
  bool IsWhole(const std::string& bytes) const { return bytes == whole[0] || bytes == whole[1]; }
  int HiddenFiles() const {
    int hidden = 0;
    for (const auto& entry : std::filesystem::directory_iterator(Style("")))
      hidden += entry.path().filename().native()[0] == '.';
    return hidden;
  }
  // A process that saves the two styles in turn, `times` of them; it ends with 0 when all
  // succeeded.
  pid_t StartSaver(int times) const {
    const pid_t process = fork();
    if (process != 0)
      return process;
    const int16_t gloss = settings->gloss;
    bool isSaved = true;
    for (int i = 0; i < times && isSaved; ++i) {
      settings->gloss = static_cast<int16_t>(gloss - i % 2);
      isSaved = Replace("Mine");
    }
    if (!isSaved)
      std::perror("a save failed; the system's last word");
    _exit(isSaved ? 0 : 1);
  }
  static int EndOf(pid_t process) {
    int status = -1;
    waitpid(process, &status, 0);
    return status;
  }

  std::string whole[2];
};

TEST_F(StyleKill, KilledAtAnyMoment) {
  const int moments = isDeep ? 200 : 40;
  std::mt19937 random(5);
  int left = 0;
  for (int i = 0; i < moments; ++i) {
    const pid_t saver = StartSaver(1'000'000);
    usleep(static_cast<useconds_t>(random() % 6000));
    kill(saver, SIGKILL);
    EndOf(saver);
    ASSERT_TRUE(IsWhole(Bytes("Mine"))) << i;
    left = std::max(left, HiddenFiles());
  }
  EXPECT_GT(left, 0) << "no moment in the middle of a save was met";
  Use();
  EXPECT_EQ(HiddenFiles(), 0) << "what dead processes left is swept";
  std::printf("counted: saves killed %d\n", moments);
}

TEST_F(StyleKill, TwoSavingAtOnceBesideReadersAndSweepers) {
  const int times = isDeep ? 10000 : 300;
  const pid_t savers[2] = {StartSaver(times), StartSaver(times)};
  const pid_t sweeper = fork();
  if (sweeper == 0) {
    std::string why;
    while (LM_UseStyleLibrary(why))
      usleep(500);
    _exit(1);
  }
  int reads = 0;
  int status[2] = {};
  for (int i = 0; i < 2; ++i)
    for (; waitpid(savers[i], &status[i], WNOHANG) == 0; ++reads)
      ASSERT_TRUE(IsWhole(Bytes("Mine")));
  kill(sweeper, SIGKILL);
  EXPECT_TRUE(WIFSIGNALED(EndOf(sweeper)));
  EXPECT_EQ(status[0], 0);
  EXPECT_EQ(status[1], 0);
  Use();
  EXPECT_EQ(HiddenFiles(), 0);
  std::printf("counted: saves by each of two processes %d\ncounted: reads beside them %d\n", times,
              reads);
}

} // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  isDeep = argc > 1 && std::string_view(argv[1]) == "deep";
  return RUN_ALL_TESTS();
}
