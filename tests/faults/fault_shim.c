#define _GNU_SOURCE
#undef _FORTIFY_SOURCE /* its inline functions are those that are replaced here */
#undef _FILE_OFFSET_BITS
#define _LARGEFILE64_SOURCE
#include "fault_shim.h"

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <link.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

struct fault_plan* fault_plan = NULL;

#ifdef __SANITIZE_ADDRESS__
#define BASE(name) __interceptor_##name
#define BASE_ALIGNED __interceptor_memalign
#else
#define BASE(name) __libc_##name
#define BASE_ALIGNED __libc_memalign
#endif
extern void* BASE(malloc)(size_t size);
extern void* BASE(calloc)(size_t count, size_t size);
extern void* BASE(realloc)(void* block, size_t size);
extern void BASE(free)(void* block);
extern void* BASE_ALIGNED(size_t alignment, size_t size);

#define EXPORT __attribute__((visibility("default")))
#define CALLER __builtin_return_address(0)

__attribute__((constructor)) static void TakePlan(void) {
  const char* path = getenv("FAULT_PLAN");
  if (path == NULL)
    return;
  const int file = (int)syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC);
  void* page = file < 0
                   ? MAP_FAILED
                   : mmap(NULL, sizeof *fault_plan, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (page == MAP_FAILED)
    abort();
  syscall(SYS_close, file);
  fault_plan = page;
}

/* A preloaded plan begins with main: what fails before it, in the set-up of libraries, ends in the
 * system's way. */
static int (*program)(int, char**, char**);
static int CountedMain(int count, char** words, char** environment) {
  if (fault_plan != NULL)
    fault_plan->paused = 0;
  return program(count, words, environment);
}
__attribute__((visibility("default"))) int __libc_start_main(int (*start)(int, char**, char**),
                                                             int count, char** words,
                                                             void (*init)(void), void (*fini)(void),
                                                             void (*end)(void), void* stack) {
  int (*next)(int (*)(int, char**, char**), int, char**, void (*)(void), void (*)(void),
              void (*)(void), void*);
  *(void**)&next = dlsym(RTLD_NEXT, "__libc_start_main");
  program = start;
  return next(CountedMain, count, words, init, fini, end, stack);
}

/* Counts one operation; true when it is to fail. */
static int Strikes(void) {
  if (__atomic_load_n(&fault_plan->paused, __ATOMIC_RELAXED) != 0)
    return 0;
  if (__atomic_add_fetch(&fault_plan->count, 1, __ATOMIC_RELAXED) != fault_plan->fail_at)
    return 0;
  fault_plan->failed = 1;
  return 1;
}

/* --- Memory --- */

/* Where the program's own code lies: its files and the C++ library, which speaks for them. */
#define MOST_RANGES 64
static struct range {
  uintptr_t first, last;
  int is_own;
} ranges[MOST_RANGES];
static volatile int range_count = 0;

static int NoteRange(struct dl_phdr_info* info, size_t size, void* caller) {
  (void)size;
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const ElfW(Phdr)* part = &info->dlpi_phdr[i];
    const uintptr_t first = info->dlpi_addr + part->p_vaddr;
    if (part->p_type != PT_LOAD || (part->p_flags & PF_X) == 0 || (uintptr_t)caller < first ||
        (uintptr_t)caller >= first + part->p_memsz || range_count >= MOST_RANGES)
      continue;
    const char* name = info->dlpi_name;
    const char* slash = strrchr(name, '/');
    const char* base = slash == NULL ? name : slash + 1;
    const int is_own = *base == '\0' || strncmp(base, "limn", 4) == 0 ||
                       strncmp(base, "liblimn", 7) == 0 || strncmp(base, "libtoolbox", 10) == 0 ||
                       strncmp(base, "libstdc++", 9) == 0;
    ranges[range_count] = (struct range){first, first + part->p_memsz, is_own};
    ++range_count;
    return 1;
  }
  return 0;
}

static int IsOwn(void* caller) {
  for (int tries = 0; tries < 2; ++tries) {
    for (int i = 0; i < range_count; ++i)
      if ((uintptr_t)caller >= ranges[i].first && (uintptr_t)caller < ranges[i].last)
        return ranges[i].is_own;
    dl_iterate_phdr(NoteRange, caller);
  }
  return 0;
}

static int Refused(void* caller) {
  if (fault_plan == NULL)
    return 0;
  const uint32_t kind = fault_plan->kind;
  if (kind == FAULT_MEMORY || (kind == FAULT_OWN_MEMORY && IsOwn(caller)))
    if (Strikes()) {
      errno = ENOMEM;
      return 1;
    }
  return 0;
}

static void* Counted(void* block) {
  if (fault_plan != NULL && block != NULL)
    __atomic_add_fetch(&fault_plan->live, 1, __ATOMIC_RELAXED);
  return block;
}

EXPORT void* malloc(size_t size) {
  return Refused(CALLER) ? NULL : Counted(BASE(malloc)(size));
}
EXPORT void* calloc(size_t count, size_t size) {
  return Refused(CALLER) ? NULL : Counted(BASE(calloc)(count, size));
}
EXPORT void* realloc(void* block, size_t size) {
  if (Refused(CALLER))
    return NULL;
  void* moved = BASE(realloc)(block, size);
  if (fault_plan != NULL && block == NULL)
    return Counted(moved);
  if (fault_plan != NULL && moved == NULL && size == 0)
    __atomic_sub_fetch(&fault_plan->live, 1, __ATOMIC_RELAXED);
  return moved;
}
EXPORT void free(void* block) {
  if (fault_plan != NULL && block != NULL)
    __atomic_sub_fetch(&fault_plan->live, 1, __ATOMIC_RELAXED);
  BASE(free)(block);
}
EXPORT void* memalign(size_t alignment, size_t size) {
  return Refused(CALLER) ? NULL : Counted(BASE_ALIGNED(alignment, size));
}
EXPORT void* aligned_alloc(size_t alignment, size_t size) {
  return Refused(CALLER) ? NULL : Counted(BASE_ALIGNED(alignment, size));
}
EXPORT int posix_memalign(void** block, size_t alignment, size_t size) {
  void* made = Refused(CALLER) ? NULL : Counted(BASE_ALIGNED(alignment, size));
  if (made == NULL)
    return ENOMEM;
  *block = made;
  return 0;
}

/* --- Files --- */

#define MOST_FILES 1024
static unsigned char counts_file[MOST_FILES]; /* by descriptor */

static int CountsPath(const char* path) {
  return fault_plan != NULL && path != NULL && path[0] != '\0' &&
         (path[0] != '/' || strncmp(path, fault_plan->folder, strlen(fault_plan->folder)) == 0);
}
static int CountsFile(int file) {
  return fault_plan != NULL && file >= 0 && file < MOST_FILES && counts_file[file];
}
static int Note(int file, int counts) {
  if (file >= 0 && file < MOST_FILES)
    counts_file[file] = (unsigned char)counts;
  return file;
}

/* What an operation can suffer. */
enum trait { TAKES_SPACE = 1, MAY_WAIT = 2, MOVES_BYTES = 4 };

/* The error that an operation shall fail with; -1 to move one byte only; 0 for none. */
static int Fault(int counts, int traits) {
  if (!counts)
    return 0;
  switch (fault_plan->kind) {
  case FAULT_INPUT_OUTPUT:
    return Strikes() ? EIO : 0;
  case FAULT_NO_SPACE:
    return (traits & TAKES_SPACE) != 0 && Strikes() ? ENOSPC : 0;
  case FAULT_INTERRUPTED:
    return (traits & MAY_WAIT) != 0 && Strikes() ? EINTR : 0;
  case FAULT_SHORT:
    return (traits & MOVES_BYTES) != 0 && Strikes() ? -1 : 0;
  default:
    return 0;
  }
}

#define NEXT(result, name, ...)                                                                    \
  static result (*next)(__VA_ARGS__) = NULL;                                                       \
  if (next == NULL)                                                                                \
  next = (result(*)(__VA_ARGS__))dlsym(RTLD_NEXT, #name)

#define FAIL_WITH(counts, traits)                                                                  \
  const int fault = Fault(counts, traits);                                                         \
  if (fault > 0) {                                                                                 \
    errno = fault;                                                                                 \
    return -1;                                                                                     \
  }

static mode_t ModeOf(int flags, va_list list) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? (mode_t)va_arg(list, int) : 0;
}

#define OPEN(name, counted, call, ...)                                                             \
  EXPORT int name(__VA_ARGS__, int flags, ...) {                                                   \
    NEXT(int, name, __VA_ARGS__, int, ...);                                                        \
    va_list list;                                                                                  \
    va_start(list, flags);                                                                         \
    const mode_t mode = ModeOf(flags, list);                                                       \
    va_end(list);                                                                                  \
    const int counts = counted;                                                                    \
    FAIL_WITH(counts, ((flags & O_CREAT) != 0 ? TAKES_SPACE : 0) | MAY_WAIT)                       \
    return Note(call, counts);                                                                     \
  }
#define COUNTS_IN_FOLDER CountsPath(path) && (folder == AT_FDCWD || CountsFile(folder))
OPEN(open, CountsPath(path), next(path, flags, mode), const char* path)
OPEN(open64, CountsPath(path), next(path, flags, mode), const char* path)
OPEN(openat, COUNTS_IN_FOLDER, next(folder, path, flags, mode), int folder, const char* path)
OPEN(openat64, COUNTS_IN_FOLDER, next(folder, path, flags, mode), int folder, const char* path)

/* The names under which fortified programs call them. */
EXPORT int __open_2(const char* path, int flags) {
  return open(path, flags);
}
EXPORT int __open64_2(const char* path, int flags) {
  return open64(path, flags);
}
EXPORT ssize_t __read_chk(int file, void* buffer, size_t size, size_t room) {
  if (size > room)
    abort();
  return read(file, buffer, size);
}

EXPORT int close(int file) {
  NEXT(int, close, int);
  const int counts = CountsFile(file);
  Note(file, 0);
  const int fault = Fault(counts, MAY_WAIT | TAKES_SPACE);
  const int closed = next(file); /* the descriptor is gone, whatever is said about its bytes */
  if (fault > 0) {
    errno = fault;
    return -1;
  }
  return closed;
}

/* What fails, or goes on to the system's. */
#define FORWARD(result, name, counts, traits, call, ...)                                           \
  EXPORT result name(__VA_ARGS__) {                                                                \
    NEXT(result, name, __VA_ARGS__);                                                               \
    FAIL_WITH(counts, traits)                                                                      \
    return call;                                                                                   \
  }
#define READS (MAY_WAIT | MOVES_BYTES)
#define WRITES (TAKES_SPACE | MAY_WAIT)
#define MOVED (fault < 0 && size > 1 ? 1 : size)
FORWARD(ssize_t, read, CountsFile(file), READS, next(file, to, MOVED), int file, void* to,
        size_t size)
FORWARD(ssize_t, write, CountsFile(file), WRITES | MOVES_BYTES, next(file, from, MOVED), int file,
        const void* from, size_t size)
FORWARD(ssize_t, pread, CountsFile(file), READS, next(file, to, MOVED, offset), int file, void* to,
        size_t size, off_t offset)
FORWARD(ssize_t, pread64, CountsFile(file), READS, next(file, to, MOVED, offset), int file,
        void* to, size_t size, off64_t offset)
FORWARD(ssize_t, writev, CountsFile(file), WRITES, next(file, pieces, count), int file,
        const struct iovec* pieces, int count)
/* A test's files need not reach the disk. */
FORWARD(int, fsync, CountsFile(file), WRITES, fault_plan != NULL ? 0 : next(file), int file)
FORWARD(int, ftruncate, CountsFile(file), WRITES, next(file, size), int file, off_t size)
FORWARD(int, ftruncate64, CountsFile(file), WRITES, next(file, size), int file, off64_t size)
FORWARD(int, rename, CountsPath(to), TAKES_SPACE, next(from, to), const char* from, const char* to)
FORWARD(int, renameat2, CountsPath(to), TAKES_SPACE, next(folder, from, other, to, flags),
        int folder, const char* from, int other, const char* to, unsigned flags)
FORWARD(int, mkdir, CountsPath(path), TAKES_SPACE, next(path, mode), const char* path, mode_t mode)
FORWARD(int, unlink, CountsPath(path), 0, next(path), const char* path)
EXPORT DIR* opendir(const char* path) {
  NEXT(DIR*, opendir, const char*);
  const int fault = Fault(CountsPath(path), 0);
  if (fault > 0) {
    errno = fault;
    return NULL;
  }
  return next(path);
}
