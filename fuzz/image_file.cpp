// An image file of any format from a stranger: refused with a sentence, or a photograph whose
// planes are all there, that can be written and read again.
#include "FuzzInput.h"

#include "failure.h"
#include "image_file.h"
#include "image_library.h"
#include "image_output.h"
#include "image_source.h"

#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

using namespace limn;

namespace {

constexpr int LARGEST_SIDE = 300; // what is larger only takes longer

// A folder of this process' own, in memory where there is such a place.
const std::filesystem::path& Folder() {
  static const std::filesystem::path folder = [] {
    std::error_code none;
    const bool inMemory = std::filesystem::is_directory("/dev/shm", none);
    std::string name =
        (inMemory ? "/dev/shm" : std::filesystem::temp_directory_path()) / "limn-fuzz-XXXXXX";
    Check(mkdtemp(name.data()) != nullptr, "there is room for a folder");
    std::atexit([] { std::filesystem::remove_all(Folder()); });
    return std::filesystem::path(name);
  }();
  return folder;
}

void CheckWhole(const Photograph& photograph) {
  Check(photograph.numPlanes >= 3 &&
            photograph.pixels.size() == static_cast<size_t>(photograph.width) *
                                            static_cast<size_t>(photograph.height) *
                                            static_cast<size_t>(photograph.numPlanes),
        "every plane is there");
}

void CheckRoundTrip(Photograph& photograph, const char* file) {
  const std::string path = Folder() / file;
  WritePhotograph(photograph, PlanesOf(photograph), ParseOutputName(path), path, Existing::Replace);
  const Photograph again = ReadPhotograph(path);
  Check(again.width == photograph.width && again.height == photograph.height,
        "a written image has its size");
  Check(again.numPlanes != photograph.numPlanes || again.pixels == photograph.pixels,
        "a written image has its pixels");
}

void Read(const std::string& path, size_t choice) {
  const vips::VImage header = OpenImage(path);
  if (header.width() > LARGEST_SIDE || header.height() > LARGEST_SIDE || header.bands() > 20)
    return;
  if (choice % 4 == 0) {
    const GreyImage grey = ReadGreyImage(path);
    Check(grey.pixels.size() == static_cast<size_t>(grey.width) * static_cast<size_t>(grey.height),
          "a grey image is one plane");
    return;
  }
  const int planes = CountPlanes(path);
  Photograph photograph = ReadPhotograph(path);
  Check(photograph.numPlanes == planes, "the planes are as many as the header says");
  CheckWhole(photograph);
  if (choice % 16 == 1)
    CheckRoundTrip(photograph, photograph.numPlanes <= 4 ? "again.png" : "again.tif");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = Folder() / "image";
  static const int file = [] {
    StartImageLibrary(1);
    return open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  }();
  Check(ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size),
        "there is room for an image");
  try {
    Read(path, size);
  } catch (const Failure& failure) {
    Check(std::string(failure.what()).size() > path.size() + 2, "a refusal says why");
    Check(failure.Code() == ExitCode::BadInput, "a small file is at fault itself, not the machine");
  }
  return 0;
}
