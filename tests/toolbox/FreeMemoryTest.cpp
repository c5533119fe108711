// How much memory the system is taken to have left, on made-up systems.
#include "TB_FreeMemory.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

class FreeMemoryTest : public testing::Test {
protected:
  void SetUp() override {
    std::string pattern = std::filesystem::temp_directory_path() / "system-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    root = pattern;
  }
  void TearDown() override { std::filesystem::remove_all(root); }
  void Write(const std::string& path, const std::string& content) const {
    std::filesystem::create_directories(std::filesystem::path(root + path).parent_path());
    std::ofstream(root + path) << content;
  }
  uint64_t Free() const { return TB_FreeMemory(root, TB_FindControlGroups(root)); }
  std::string root;
};

constexpr const char* MEMINFO = "MemTotal:  2000 kB\nMemFree:  100 kB\nMemAvailable:    1000 kB\n";
constexpr uint64_t MACHINE = 1000 * 1024;

} // namespace

TEST_F(FreeMemoryTest, WithoutGroupsTheMachineDecides) {
  EXPECT_EQ(Free(), UINT64_MAX) << "a system that says nothing";
  Write("/proc/meminfo", MEMINFO);
  EXPECT_EQ(Free(), MACHINE);
}

TEST_F(FreeMemoryTest, TheTightestGroupAboveUsDecides) {
  Write("/proc/meminfo", MEMINFO);
  Write("/proc/self/cgroup", "0::/outer/inner\n");
  Write("/proc/self/mountinfo",
        "31 23 0:28 / /sys/fs/cgroup rw,nosuid shared:9 - cgroup2 cgroup2 rw\n");
  Write("/sys/fs/cgroup/outer/inner/memory.max", "max\n");
  Write("/sys/fs/cgroup/outer/inner/memory.current", "5000\n");
  EXPECT_EQ(Free(), MACHINE) << "no limit";
  Write("/sys/fs/cgroup/outer/memory.max", "300000\n");
  Write("/sys/fs/cgroup/outer/memory.current", "250000\n");
  Write("/sys/fs/cgroup/outer/memory.stat",
        "anon 9\nfile 9\ninactive_file 1000\nactive_file 200\n");
  EXPECT_EQ(Free(), 51200U) << "file cache counts as free";
  Write("/sys/fs/cgroup/outer/inner/memory.max", "9000\n");
  EXPECT_EQ(Free(), 4000U);
  Write("/sys/fs/cgroup/outer/inner/memory.current", "9500\n");
  EXPECT_EQ(Free(), 0U) << "over the limit";
}

TEST_F(FreeMemoryTest, VersionOneInAContainer) {
  Write("/proc/meminfo", MEMINFO);
  Write("/proc/self/cgroup", "5:cpu,cpuacct:/jobs\n4:memory:/docker/abc\n1:name=systemd:/\n");
  Write("/proc/self/mountinfo", "35 31 0:32 /docker/abc /cg/memory rw - cgroup cgroup rw,memory\n"
                                "36 31 0:33 / /cg/cpu rw - cgroup cgroup rw,cpu,cpuacct\n");
  Write("/cg/memory/memory.limit_in_bytes", "9223372036854771712\n");
  Write("/cg/memory/memory.usage_in_bytes", "70000\n");
  Write("/cg/memory/memory.stat",
        "inactive_file 1\ntotal_inactive_file 500\ntotal_active_file 20\n");
  EXPECT_EQ(Free(), MACHINE) << "no limit";
  Write("/cg/memory/memory.limit_in_bytes", "100000\n");
  EXPECT_EQ(Free(), 30520U);
}

TEST_F(FreeMemoryTest, DamagedSystemFilesAreSurvived) {
  Write("/proc/meminfo", "MemAvailable:\n");
  Write("/proc/self/cgroup", "0::\n::\n:\n0");
  Write("/proc/self/mountinfo", " - \n1 2 3 - cgroup2\n - cgroup x memory\nrubbish\n");
  EXPECT_EQ(Free(), UINT64_MAX);
  Write("/proc/meminfo", "MemAvailable: 99999999999999999999999 kB\n");
  EXPECT_EQ(Free(), UINT64_MAX);
}
