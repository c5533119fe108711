# 64-bit Arm, run under user-mode emulation.
set(MACHINE aarch64)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/emulated.cmake)
