# 32-bit big-endian MIPS, run under user-mode emulation.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR mips)
set(CMAKE_C_COMPILER mips-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER mips-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH /usr/mips-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-mips;-L;/usr/mips-linux-gnu)
# Not the libraries of the machine that builds.
set(ENV{PKG_CONFIG_LIBDIR} /usr/mips-linux-gnu/lib/pkgconfig)
