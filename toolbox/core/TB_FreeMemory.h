// How much memory the machine and the control groups of this process have left. Private to the
// Memory Manager.
#pragma once

#include "MacTypes.h"

#include <string>
#include <vector>

// One control group that limits this process: its folder, and which of the two kinds it is.
struct TB_ControlGroup {
  std::string folder;
  bool unified; // version 2: memory.max and memory.current
};

// The groups from this process's own up to the outermost one visible. root: prefix of every path
// read, empty but in tests. Empty where the system has none.
std::vector<TB_ControlGroup> TB_FindControlGroups(const std::string& root);

// Bytes that could be used now without swapping: what the machine has available, or less when a
// control group allows less. File cache counts as free. UINT64_MAX when the system does not say.
uint64_t TB_FreeMemory(const std::string& root, const std::vector<TB_ControlGroup>& groups);

// Bytes of this process that are in memory now; UINT64_MAX when the system does not say.
uint64_t TB_ResidentMemory();
