// What each format's files are checked for before a decoder sees them. Every check reads the file
// forwards, each part of it a bounded number of times, and believes no length or count in it.
#pragma once

#include <bit>
#include <cstdint>
#include <string>

namespace limn {

// A file's bytes, read in large pieces.
class FileBytes {
public:
  // descriptor: open for reading as long as this lives; its position is not used.
  FileBytes(int descriptor, int64_t length) : _descriptor(descriptor), _length(length) {}
  int64_t Length() const { return _length; }
  // -1 after the file's end.
  int At(int64_t place);
  // `size` bytes, at most 8, as one number; 0 when they reach beyond the file's end.
  uint64_t Number(int64_t place, int size, std::endian order = std::endian::big);
  // The first place from `place` on that holds `value`; -1 when none does.
  int64_t Find(uint8_t value, int64_t place);

private:
  void _Read(int64_t place);

  int _descriptor;
  int64_t _length;
  int64_t _start = 0;
  int64_t _held = 0;
  uint8_t _bytes[64 << 10];
};

// Four letters as the number that FileBytes reads them as.
constexpr uint64_t NameOf(const char (&name)[5]) {
  uint64_t number = 0;
  for (int i = 0; i < 4; ++i)
    number = number << 8 | static_cast<uint8_t>(name[i]);
  return number;
}

// Of a PNG, and what an animated WebP is made of.
constexpr int MOST_CHUNKS = 10'000;
// How often the same bytes, or the same image, may be decoded again.
constexpr unsigned MOST_REPEATS = 10;

// These throw Failure(BadInput) with a sentence that begins with `path`.
void CheckPng(FileBytes& bytes, const std::string& path);
void CheckJpeg(FileBytes& bytes, const std::string& path);
void CheckTiff(FileBytes& bytes, const std::string& path);
void CheckWebp(FileBytes& bytes, const std::string& path);
void CheckHeif(FileBytes& bytes, const std::string& path); // and AVIF
void CheckRadiance(FileBytes& bytes, const std::string& path);
void CheckOpenExr(FileBytes& bytes, const std::string& path);

// Whether a TIFF's first page has `size` bytes of pixels or more that nothing compresses, each of
// them within the file.
bool HoldsPlainPixels(FileBytes& bytes, uint64_t size);

} // namespace limn
