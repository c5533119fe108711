# What the toolchains of emulated machines share: they set MACHINE, as in the compilers' names.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${MACHINE}-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER ${MACHINE}-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH /usr/${MACHINE}-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${MACHINE};-L;/usr/${MACHINE}-linux-gnu)
# Not the libraries of the machine that builds.
set(ENV{PKG_CONFIG_LIBDIR} /usr/${MACHINE}-linux-gnu/lib/pkgconfig)
