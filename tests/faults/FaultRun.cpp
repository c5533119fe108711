#include "FaultRun.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

// Each look at what leaked takes a tenth of a second, and so does each process on an emulated
// machine.
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
constexpr bool IS_SLOW = true;
#elif defined(LIMN_EMULATED)
constexpr bool IS_SLOW = true;
#else
constexpr bool IS_SLOW = false;
#endif

// Under the address sanitizer these would not go through malloc.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size > 0 ? size : 1);
}
void* operator new(size_t size) {
  if (void* block = std::malloc(size > 0 ? size : 1))
    return block;
  throw std::bad_alloc();
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size > 0 ? size : 1);
}
void* operator new[](size_t size) {
  return ::operator new(size);
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, size_t) noexcept {
  std::free(block);
}
void operator delete[](void* block) noexcept {
  std::free(block);
}
void operator delete[](void* block, size_t) noexcept {
  std::free(block);
}

namespace {

constexpr unsigned LONGEST_RUN = 60;              // seconds
constexpr uint32_t FIRST_ONES = IS_SLOW ? 4 : 40; // all tried at either pace
constexpr uint32_t STRIDE = 41;

bool isDeep = false;

int FailureCount() {
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

// In the child: the verdict as exit code.
int WorkOnce(const std::function<void()>& work, bool isWarm) {
  alarm(LONGEST_RUN);
  const int failures = FailureCount();
  const int32_t before = fault_plan->live;
  work();
  // What stays from a first run on is no leak.
  if (isWarm && fault_plan->live > before)
    ADD_FAILURE() << fault_plan->live - before << " blocks are left behind";
#ifdef __SANITIZE_ADDRESS__
  if (!isWarm && __lsan_do_recoverable_leak_check() != 0)
    ADD_FAILURE() << "there is a leak";
#endif
  std::fflush(nullptr);
  return FailureCount() > failures ? 1 : 0;
}

bool IsGood(const std::function<void()>& work, bool isWarm, uint32_t failAt, std::string& why) {
  fault_plan->fail_at = failAt;
  fault_plan->count = fault_plan->failed = 0;
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0)
    _exit(WorkOnce(work, isWarm));
  int status = 0;
  waitpid(child, &status, 0);
  fault_plan->paused = 1;
  if (WIFSIGNALED(status))
    why = "it died of signal " + std::to_string(WTERMSIG(status));
  return status == 0;
}

} // namespace

void TryEachFailure(fault_kind kind, const char* what, const std::function<void()>& work,
                    Pace pace) {
  fault_plan->kind = kind;
  if (isDeep || IS_SLOW)
    pace = isDeep ? Pace::EveryOne : Pace::Some;
  uint32_t tried = 0;
  for (const bool isWarm : {false, true}) {
    fault_plan->fail_at = 0;
    if (isWarm)
      work();
    uint32_t total = 0;
    for (uint32_t n = 0; n <= total + 1;
         n += n < FIRST_ONES || pace == Pace::EveryOne ? 1 : STRIDE) {
      std::string why;
      if (!IsGood(work, isWarm, n, why)) {
        ADD_FAILURE() << what << ", " << (isWarm ? "warm" : "cold") << ", failure " << n << " of "
                      << total << ": " << why;
        return;
      }
      total = n == 0 ? fault_plan->count : total;
      tried += fault_plan->failed;
    }
    ASSERT_GT(total, 0U) << what << " was never reached";
  }
  fault_plan->kind = FAULT_NONE;
  std::printf("counted: %s %u\n", what, tried);
}

FaultTest::FaultTest() {
  std::string pattern = std::filesystem::temp_directory_path() / "limn-faults-XXXXXX";
  folder = std::filesystem::canonical(mkdtemp(pattern.data()));
  std::snprintf(fault_plan->folder, sizeof fault_plan->folder, "%s", folder.c_str());
}

FaultTest::~FaultTest() {
  fault_plan->kind = FAULT_NONE;
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  isDeep = argc > 1 && std::string_view(argv[1]) == "deep";
  void* page =
      mmap(nullptr, sizeof *fault_plan, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED)
    return 1;
  fault_plan = static_cast<struct fault_plan*>(page);
  fault_plan->paused = 1;
  return RUN_ALL_TESTS();
}
