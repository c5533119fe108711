// What a file may claim of itself, so that a small one cannot fill the memory.
#pragma once

#include <string>
#include <vips/vips8>

namespace limn {

// How a format's pixels are decoded: row after row, or all at once.
enum class Decoding { ByRows, Whole };

// Before libvips looks at the file. Throws Failure(BadInput) for a file that would have to be read
// whole and is longer than a photograph can be, for a PNG or TIFF whose texts and profiles would
// fill the memory, and for a file that its decoder would take far longer over than its length and
// its pixels call for: many segments, scans, tags or frames, or the same bytes again and again.
void CheckContent(int descriptor, Decoding decoding, const std::string& path);

// After its header is read: throws Failure(BadInput) when the image has more pixels than
// ImageSizeLimit allows, every four channels counted as one, or, without such a limit, when a file
// decoded whole, or one of very long rows, holds more of them than its length can mean. shrink: by
// which the decoder reduced the sides.
void CheckPixels(const vips::VImage& image, int shrink, Decoding decoding, int64_t fileLength,
                 const std::string& path);

} // namespace limn
