// A photograph read from a file, in the form that a document of the editor has: interleaved planes
// of 8 bits, the first three of them red, green and blue.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>
#include <vips/vips8>

namespace limn {

// A plane of its own: a selection mask or a height map. width * height bytes, no padding; of a file
// of more than 8 bits the same in 16 bits too.
struct GreyImage {
  std::string file;
  int width = 0;
  int height = 0;
  std::vector<uint8_t> pixels;
  std::vector<uint16_t> words;
};

// numPlanes samples a pixel (3 or more), width * numPlanes a row, no padding.
struct Photograph {
  int width = 0;
  int height = 0;
  int numPlanes = 0;
  std::vector<uint8_t> pixels; // in 8 bits
  // Of more than 8 bits, the samples themselves, of which `pixels` are the 8-bit form.
  VipsBandFormat depth = VIPS_FORMAT_UCHAR;
  std::vector<uint8_t> deep;
  vips::VImage metadata;            // one pixel that carries profile, EXIF, resolution …
  std::vector<std::string> notices; // what reading changed: "16 bits a channel become 8"
};

// A photograph whose pixels have not been read yet.
struct OpenedPhotograph {
  vips::VImage planes;   // upright; the first three red, green and blue, all of one depth
  vips::VImage metadata; // as Photograph's
  std::vector<std::string> notices; // likewise, but for what becomes of the depth
  int numBits = 8;                  // that a channel has in the file
};

// That an image of `before` bits a channel has so many now.
std::string DepthNotice(int before, int after);

// Reads the header. The pixels are decoded once, from top to bottom, when asked for; what is wrong
// with them shows then, as an error or a warning of libvips. shrink: as for OpenImage. depth: what
// the planes are made, UCHAR, USHORT or FLOAT; given NOTSET, as deep as the file, but no deeper
// than `most`. Throws Failure or vips::VError. The caller holds Complaints.
OpenedPhotograph OpenPhotograph(const std::string& path, int shrink = 1,
                                VipsBandFormat depth = VIPS_FORMAT_UCHAR,
                                VipsBandFormat most = VIPS_FORMAT_FLOAT);

// Gives the rows of an image from the top, while its decoder goes on. What `take` throws comes out
// here; throws vips::VError too.
void ForEachRow(const vips::VImage& image,
                const std::function<void(int y, const VipsPel* row)>& take);

// The pixels of an image, in its own format. Throws vips::VError.
std::vector<uint8_t> DecodedPixels(const vips::VImage& image);

// The samples of a photograph in its own depth, as an image that borrows them.
vips::VImage PlanesOf(Photograph& photograph);

// Planes of any depth as a photograph of 8 bits has them: how the picture looks.
vips::VImage InBytes(const vips::VImage& planes);

// A grey image of 16 bits.
GreyImage GreyOfWords(std::string file, int width, int height, std::vector<uint16_t> words);

// Reads a photograph whatever its colour space and depth: grey becomes RGB, other spaces go through
// their profile to sRGB, the orientation is applied; alpha and further channels follow as they are.
// It keeps its depth as far as `most`. A file that is cut short or damaged is a Failure(BadInput).
// arrived: called with the photograph while it is read, on another thread than the decoder's, so
// that something is made of it meanwhile. Its shape is known then, and `pixels` has some rows from
// the top, in the end all, in room that stays where it is. It may throw.
using RowsArrived = std::function<void(const Photograph&)>;
Photograph ReadPhotograph(const std::string& path, VipsBandFormat most = VIPS_FORMAT_UCHAR,
                          const RowsArrived& arrived = {});

// Reads an image whose grey values are meant as numbers: no profile is applied, an alpha channel is
// ignored, the orientation is applied. A coloured image is a
// Failure(BadInput). The notices begin with the file's name.
GreyImage ReadGreyImage(const std::string& path);

// The same for a selection, in 8 bits whatever the file has: rounded to them, where a height's
// lower ones are cut off.
GreyImage ReadMask(const std::string& path);

// How many planes ReadPhotograph would give, found without decoding the pixels.
int CountPlanes(const std::string& path);

} // namespace limn
