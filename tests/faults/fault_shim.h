/* Counts a process's allocations and file operations, and makes the n-th one fail.

   Linked into a test, or preloaded into a program (LD_PRELOAD, with FAULT_PLAN naming a file that
   holds a plan). Either way the plan is shared with the processes that fork: the n-th operation of
   all of them together fails, once. */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum fault_kind {
  FAULT_NONE,
  FAULT_MEMORY,       /* an allocation is refused */
  FAULT_OWN_MEMORY,   /* the same, counting only those that `own` files of the program make */
  FAULT_INPUT_OUTPUT, /* a file operation fails with EIO */
  FAULT_NO_SPACE,     /* one that takes space on the disk fails with ENOSPC */
  FAULT_INTERRUPTED,  /* one that may wait fails with EINTR */
  FAULT_SHORT         /* a read or write moves one byte */
};

/* The same on every machine; Python's struct "6I256s" in tests/faults. */
struct fault_plan {
  uint32_t kind;
  uint32_t fail_at; /* from 1; 0 only counts */
  uint32_t count;   /* operations of that kind so far */
  uint32_t failed;  /* 1 once the failure was given */
  uint32_t paused;  /* above 0 nothing counts */
  int32_t live;     /* blocks allocated less blocks released */
  char folder[256]; /* file operations count on files below it, and on relative names */
};

/* The plan in force; null for none. Its owner sets `kind` last. */
extern struct fault_plan* fault_plan;

#ifdef __cplusplus
}
#endif
