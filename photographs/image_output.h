// Writing a lit photograph in the format that its name asks for.
#pragma once

#include "atomic_file.h"
#include "image_file.h"
#include "image_library.h"

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace limn {

// An output name as it is written on the command line, "lit.jpg[Q=92]", taken apart.
struct OutputName {
  std::string path;    // "lit.jpg"
  std::string options; // "[Q=92]", or empty
};
OutputName ParseOutputName(const std::string& text);

// What a format is wanted for. One table has both, and says which format can what.
enum class Use { Reading, Writing };
// Whether images of such a name, going by its extension, are read or written here.
bool IsName(const std::string& path, Use use);
// All such extensions, with their full stop: ".jpg".
std::vector<std::string> Extensions(Use use);

// How many bits a channel such a file may have, by its format and options; 32 of floats. Throws
// Failure(WrongUsage) when the format is not one that is written.
struct OutputBits {
  int least;
  int most;
};
OutputBits BitsOf(const OutputName& name);

// Whether files of that format hold XMP, as libvips writes them.
bool HoldsXmp(const OutputName& name);

// What so many bits are written from: UCHAR, USHORT or FLOAT.
VipsBandFormat DepthOfBits(int bits);

// Fails when the format or its options do not exist, or when its writer warns of the options
// (WrongUsage), before any work is done.
void CheckOutputFormat(const OutputName& name);

// An image to be written, which may still have to be decoded and lit while it is.
struct WrittenImage {
  vips::VImage planes;
  vips::VImage metadata; // as Photograph's
  std::string source;    // the file that its pixels come from, or empty when they are all there
  std::shared_ptr<std::atomic<bool>> hasSourceFailed; // by then; null without a source
};

// Writes the image, with its metadata, to `target` (as ResolveTarget gives it). Channels that the
// format cannot hold are left out, which is added to `notices`. The old file, if any, stays until
// the new one is complete. Throws Failure: CannotWrite, NoMemory, or BadInput about the source. The
// caller holds `complaints` since before the source was opened.
void WriteImage(const WrittenImage& image, const OutputName& name, const std::string& target,
                Existing existing, const Complaints& complaints, std::vector<std::string>& notices);

// Writes planes of the photograph's depth, its own or others that may still have to be lit, with
// its metadata, to `target` (as ResolveTarget gives it). Channels that the format cannot hold are
// left out, and more depth than it holds too, which is added to the photograph's notices. The old
// file, if any, stays until the new one is complete. Throws Failure(CannotWrite or NoMemory).
void WritePhotograph(Photograph& photograph, vips::VImage planes, const OutputName& name,
                     const std::string& target, Existing existing);

} // namespace limn
