// What each format's files are checked for before a decoder sees them. Every check reads the file
// forwards, each part of it a bounded number of times, and believes no length or count in it.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

namespace limn {

// A file's bytes, read in large pieces. Throws Failure(BadInput) when the system cannot read them.
class FileBytes {
public:
  // descriptor: open for reading as long as this lives; its position is not used. name: for
  // sentences.
  FileBytes(int descriptor, std::string name);
  int64_t Length() const { return _length; }
  // -1 after the file's end.
  int At(int64_t place);
  bool HasAt(int64_t place, std::string_view text);
  // `size` bytes, at most 8, as one number; 0 when they reach beyond the file's end.
  uint64_t Number(int64_t place, int size, std::endian order = std::endian::big);
  // The first place from `place` on that holds `value`; -1 when none does.
  int64_t Find(uint8_t value, int64_t place);
  // Throws Failure(BadInput) with the file's name and what is wrong with it.
  [[noreturn]] void Refuse(const std::string& why) const;

private:
  void _Read(int64_t place);

  int _descriptor;
  std::string _name;
  int64_t _length = 0;
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

// These refuse a file of their format.
void CheckPng(FileBytes& bytes);
void CheckJpeg(FileBytes& bytes);
void CheckTiff(FileBytes& bytes);
void CheckWebp(FileBytes& bytes);
void CheckHeif(FileBytes& bytes); // and AVIF
void CheckRadiance(FileBytes& bytes);
void CheckOpenExr(FileBytes& bytes);

// Whether a TIFF's first page has `size` bytes of pixels or more that nothing compresses, each of
// them within the file.
bool HoldsPlainPixels(FileBytes& bytes, uint64_t size);

} // namespace limn
