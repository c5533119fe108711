// Open files by their 16-bit reference. Private to the File Manager.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

// An open file; its descriptor is -1 once closed. Held by whoever is just using it, so that a
// descriptor never changes hands in the middle of a call.
struct TB_OpenFile {
  std::mutex mutex;
  int descriptor = -1;

  TB_OpenFile() = default;
  TB_OpenFile(const TB_OpenFile&) = delete;
  TB_OpenFile& operator=(const TB_OpenFile&) = delete;
  ~TB_OpenFile();
};

// Takes a file in and answers its reference, above 0; 0 when the table is full, and the file is
// then closed. A closed file's reference is given out again only after all others.
int16_t TB_AddOpenFile(std::shared_ptr<TB_OpenFile> file);
// The file of a reference, or null.
std::shared_ptr<TB_OpenFile> TB_FindOpenFile(int16_t refNum);
// Takes the file out of the table; null when there is none.
std::shared_ptr<TB_OpenFile> TB_RemoveOpenFile(int16_t refNum);
