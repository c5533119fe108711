# 32-bit big-endian MIPS, run under user-mode emulation.
set(MACHINE mips)
set(CMAKE_SYSTEM_PROCESSOR mips)
include(${CMAKE_CURRENT_LIST_DIR}/emulated.cmake)
