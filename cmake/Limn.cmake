# Build settings shared by every folder.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
if(NOT EMSCRIPTEN)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib/static)
# Programs find the toolbox library and the plug-in by the way from their own folder, wherever the tree is
# moved to, built or installed. What only our programs load is installed into a folder of its own.
include(GNUInstallDirs)
set(LIMN_PRIVATE_LIBDIR ${CMAKE_INSTALL_LIBDIR}/limn)
file(RELATIVE_PATH LIMN_WAY_TO_PRIVATE_LIBDIR
  /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${LIMN_PRIVATE_LIBDIR})
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/${LIMN_WAY_TO_PRIVATE_LIBDIR}:$ORIGIN/../lib") # installed, built

# The compiler's usual choice of speed; the sanitizers want line numbers and quick builds.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")

option(LIMN_APPS "Build the programs that need libvips and CLI11" ON)
option(LIMN_QT "Build what needs Qt: the dialog and the desktop host" ON)
option(LIMN_TESTS "Build the tests" ON)
option(LIMN_BENCH "Build the benchmarks" ON)
option(LIMN_UNITY "Compile the files of a program together where they read the same large headers" ON)
option(LIMN_WERROR "Treat warnings as errors" OFF)
option(LIMN_FUZZ "Build the fuzzers to search for inputs (clang), not to replay the saved ones" OFF)
set(LIMN_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")

# limn_compile_together(): for the targets of this folder and below. Qt's headers, the command line library's and the
# tests' take several times as long as the code that follows them.
macro(limn_compile_together)
  set(CMAKE_UNITY_BUILD ${LIMN_UNITY})
  set(CMAKE_UNITY_BUILD_BATCH_SIZE 10)
endmacro()

find_program(LIMN_CCACHE ccache)
if(LIMN_CCACHE)
  # With names below a base folder, one checkout finds what another compiled.
  set(launcher ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${LIMN_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
endif()

# Output bytes depend on every single rounding: products and sums are never fused.
add_compile_options(-ffp-contract=off -Wall -Wextra -Wshadow -Wpointer-arith -Wundef)
add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>)
if(LIMN_WERROR)
  add_compile_options(-Werror)
endif()

# What makes a fault of ours harder to use for someone else; tests/deep/test_hardening.py reads it back from the
# built files. WebAssembly's own walls stand for it there.
if(NOT EMSCRIPTEN)
  add_link_options(-Wl,--as-needed -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
  include(CheckPIESupported)
  check_pie_supported()
  include(CheckCXXCompilerFlag)
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "LIMN_HAS${flag}" has)
    check_cxx_compiler_flag("-Werror ${flag}" ${has})
    if(${has})
      add_compile_options(${flag})
    endif()
  endforeach()
  if(NOT LIMN_SANITIZE) # the sanitizers watch the plain functions
    add_compile_options("$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  endif()
endif()

if(LIMN_SANITIZE)
  # Unsigned arithmetic is meant to wrap; everything that undefined behaviour covers is an error.
  add_compile_options(-fsanitize=${LIMN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${LIMN_SANITIZE})
endif()

if(LIMN_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link -g1)
endif()

# limn_lone_headers(TARGET HEADER): the folder of one library of headers, on its own: a cross compiler must not see
# the rest of the machine's include folder.
function(limn_lone_headers target header)
  get_filename_component(folder ${header} DIRECTORY)
  find_path(LIMN_${target}_INCLUDE ${header} PATHS /usr/include REQUIRED)
  set(alone ${CMAKE_BINARY_DIR}/third-party)
  file(MAKE_DIRECTORY ${alone})
  if(NOT EXISTS ${alone}/${header})
    file(CREATE_LINK ${LIMN_${target}_INCLUDE}/${folder} ${alone}/${folder} SYMBOLIC)
  endif()
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE ${alone})
endfunction()

# limn_find_vips(): libvips, as PkgConfig::VIPS.
macro(limn_find_vips)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(VIPS REQUIRED IMPORTED_TARGET vips-cpp>=8.14)
  # Without the header for programs of its version 7, which makes the Toolbox's `Rect` a macro.
  target_compile_definitions(PkgConfig::VIPS INTERFACE VIPS_DISABLE_COMPAT)
endmacro()

# limn_install_private(TARGETS...): modules and libraries that only our programs load.
function(limn_install_private)
  set_target_properties(${ARGN} PROPERTIES INSTALL_RPATH "$ORIGIN:$ORIGIN/..")
  install(TARGETS ${ARGN} LIBRARY DESTINATION ${LIMN_PRIVATE_LIBDIR})
endfunction()

# limn_folder(NAME SOURCES... LINK targets...): the static library of one source folder. Its headers are
# found only by those who link it, so a forbidden include does not compile.
function(limn_folder name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_LINK})
endfunction()

# limn_counted_test(NAME name QUICK words... DEEP words... COMMAND words...): one command as two tests.
# `name` adds the QUICK words to the command and belongs to every run; `deep.name` adds the DEEP words and
# runs with `ctest -C Deep -L deep` only. Either prints lines "counted: ..." of what it reached.
function(limn_counted_test)
  cmake_parse_arguments(ARG "" "NAME;TIMEOUT" "QUICK;DEEP;COMMAND;ENVIRONMENT" ${ARGN})
  add_test(NAME ${ARG_NAME} COMMAND ${ARG_COMMAND} ${ARG_QUICK})
  add_test(NAME deep.${ARG_NAME} CONFIGURATIONS Deep COMMAND ${ARG_COMMAND} ${ARG_DEEP})
  set(quick_timeout 1200) # for what hangs: a busy machine takes its time
  if(CMAKE_CROSSCOMPILING_EMULATOR) # some thirty times slower
    set(quick_timeout 3000)
  endif()
  set_tests_properties(${ARG_NAME} PROPERTIES TIMEOUT ${quick_timeout} ENVIRONMENT "${ARG_ENVIRONMENT}")
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 7200)
  endif()
  set_tests_properties(deep.${ARG_NAME} PROPERTIES LABELS deep TIMEOUT ${ARG_TIMEOUT}
    ENVIRONMENT "${ARG_ENVIRONMENT}")
endfunction()
