# cmake -D FOLDER=… -D "FILES=a;b" -D OUTPUT=x.cpp -P EmbedFiles.cmake
# Writes the bytes of the files, given relative to the folder, as a table of TB_EmbeddedFile.
cmake_minimum_required(VERSION 3.25)
set(arrays "")
set(table "")
set(number 0)
foreach(file IN LISTS FILES)
  file(READ "${FOLDER}/${file}" bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  # The closing zero lets an empty file be an array too; it does not count.
  string(APPEND arrays "const unsigned char FILE_${number}[] = {${bytes}0};\n")
  string(APPEND table "    {\"${file}\", FILE_${number}, sizeof FILE_${number} - 1},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(CONFIGURE OUTPUT "${OUTPUT}" @ONLY CONTENT [[
#include "LimnResources.h"

namespace {
@arrays@} // namespace

const TB_EmbeddedFile LM_RESOURCES[] = {
@table@};
const size_t LM_RESOURCES_COUNT = @number@;
]])
