# WebAssembly with 128-bit vectors, for browsers and Node. Its relaxed vectors are never used: there each processor
# may round in its own way.
execute_process(COMMAND em-config EMSCRIPTEN_ROOT OUTPUT_VARIABLE root OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH) # for headers of any machine, which are picked one by one
include(${root}/cmake/Modules/Platform/Emscripten.cmake)
set(flags "-msimd128 -fwasm-exceptions")
set(CMAKE_C_FLAGS_INIT "${flags}")
set(CMAKE_CXX_FLAGS_INIT "${flags}")
# The loader fetches the module as a web page would, unless it is told to read the file.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-sWASM_ASYNC_COMPILATION=0 -sALLOW_MEMORY_GROWTH=1")
set(CMAKE_CROSSCOMPILING_EMULATOR node)
