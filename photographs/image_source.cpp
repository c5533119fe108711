#include "image_source.h"

#include "image_library.h"
#include "input_limits.h"
#include "posix_file.h"

#include <memory>
#include <string_view>
#include <unistd.h>

namespace limn {
namespace {

constexpr int64_t LONGEST_WHOLE_FILE = 128 << 20; // of those that are decoded whole

// Reading through these, and not through a mapping, makes a file that shrinks meanwhile a short
// read and not a fault.
gint64 ReadPiece(VipsSourceCustom*, void* buffer, gint64 length, Descriptor* file) {
  return Uninterrupted([=] { return read(file->Number(), buffer, static_cast<size_t>(length)); });
}

gint64 Seek(VipsSourceCustom*, gint64 offset, int whence, Descriptor* file) {
  return lseek(file->Number(), offset, whence);
}

void CloseFile(void* file, GClosure*) {
  delete static_cast<Descriptor*>(file);
}

vips::VSource SourceOf(Descriptor opened) {
  auto* custom = vips_source_custom_new();
  // Owned by the first signal connection, which lives as long as the source.
  auto file = std::make_unique<Descriptor>(std::move(opened));
  g_signal_connect(custom, "seek", G_CALLBACK(Seek), file.get());
  g_signal_connect_data(custom, "read", G_CALLBACK(ReadPiece), file.get(), CloseFile,
                        G_CONNECT_DEFAULT);
  (void)file.release();
  return vips::VSource(VIPS_SOURCE(custom));
}

using SourceLoader = vips::VImage (*)(vips::VSource source, vips::VOption* options);

template <SourceLoader LOAD> vips::VImage Load(Descriptor file, vips::VOption* options) {
  return LOAD(SourceOf(std::move(file)), options);
}

// Its library opens files by name, and once more when pixels are asked for.
vips::VImage LoadOpenExr(Descriptor opened, vips::VOption* options) {
  auto file = std::make_unique<Descriptor>(std::move(opened));
  const std::string name = "/proc/self/fd/" + std::to_string(file->Number());
  vips::VImage image = vips::VImage::openexrload(name.c_str(), options);
  g_object_set_data_full(G_OBJECT(image.get_image()), "limn-file", file.release(),
                         [](void* kept) { CloseFile(kept, nullptr); });
#if VIPS_MAJOR_VERSION == 8 && VIPS_MINOR_VERSION < 15 // which counts its alpha to 255
  image = image.linear({1, 1, 1, 1 / 255.0}, {0, 0, 0, 0});
#endif
  return image;
}

// A format by the bytes at `offset` of its files. Going by these, and not letting libvips ask each
// of its loaders, keeps the loaders that are not wanted from so much as looking at a file.
struct InputFormat {
  int64_t offset;
  std::string_view magic;
  vips::VImage (*load)(Descriptor file, vips::VOption* options);
  // Before libvips looks at a file: refuses one whose texts and profiles would fill the memory, or
  // that its decoder would take far longer over than its length and its pixels call for: many
  // segments, scans, tags or frames, or the same bytes again and again.
  void (*check)(FileBytes& bytes);
  Decoding decoding = Decoding::ByRows;
};

void CheckNothing(FileBytes&) {}

using namespace std::string_view_literals;

constexpr InputFormat READ_FORMATS[] = {
    {0, "\xff\xd8\xff"sv, Load<vips::VImage::jpegload_source>, CheckJpeg},
    {0, "\x89PNG\r\n\x1a\n"sv, Load<vips::VImage::pngload_source>, CheckPng},
    {0, "II*\0"sv, Load<vips::VImage::tiffload_source>, CheckTiff},
    {0, "MM\0*"sv, Load<vips::VImage::tiffload_source>, CheckTiff},
    {0, "II+\0"sv, Load<vips::VImage::tiffload_source>, CheckTiff}, // with 64-bit offsets
    {0, "MM\0+"sv, Load<vips::VImage::tiffload_source>, CheckTiff},
    {8, "WEBP"sv, Load<vips::VImage::webpload_source>, CheckWebp, Decoding::Whole},
    {0, "P1"sv, Load<vips::VImage::ppmload_source>, CheckNothing},
    {0, "P2"sv, Load<vips::VImage::ppmload_source>, CheckNothing},
    {0, "P3"sv, Load<vips::VImage::ppmload_source>, CheckNothing},
    {0, "P4"sv, Load<vips::VImage::ppmload_source>, CheckNothing},
    {0, "P5"sv, Load<vips::VImage::ppmload_source>, CheckNothing},
    {0, "P6"sv, Load<vips::VImage::ppmload_source>, CheckNothing},
    {0, "Pf"sv, Load<vips::VImage::ppmload_source>, CheckNothing, Decoding::BottomUp},
    {0, "PF"sv, Load<vips::VImage::ppmload_source>, CheckNothing, Decoding::BottomUp},
    {0, "#?RADIANCE\n"sv, Load<vips::VImage::radload_source>, CheckRadiance},
    {0, "#?RGBE\n"sv, Load<vips::VImage::radload_source>, CheckRadiance},
    {0, "v/1\x01"sv, LoadOpenExr, CheckOpenExr, Decoding::Whole},
    {0, "GIF8"sv, Load<vips::VImage::gifload_source>, CheckNothing, Decoding::Whole},
    {4, "ftyp"sv, Load<vips::VImage::heifload_source>, CheckHeif, Decoding::Whole},
};

const InputFormat& FormatOf(FileBytes& bytes) {
  if (bytes.At(0) < 0)
    bytes.Refuse("is empty");
  for (const InputFormat& format : READ_FORMATS)
    if (bytes.HasAt(format.offset, format.magic))
      return format;
  bytes.Refuse("is not a JPEG, PNG, TIFF, WebP, PPM, PFM, HDR, EXR, GIF, HEIF or AVIF image");
}

// What a component is where the image is white, if its format counts to other ends than 255 and
// 65535; 0 if not.
int OwnWhite(const vips::VImage& image) {
  constexpr int BITS = 16;
  const auto number = [&](const char* field) {
    return image.get_typeof(field) != 0 ? image.get_int(field) : 0;
  };
  if (image.format() == VIPS_FORMAT_UCHAR || image.format() == VIPS_FORMAT_USHORT)
    if (const int most = number("ppm-max-value"); most > 1)
      return most;
  const int bits = number("heif-bitdepth"); // the highest of 16
  if (image.format() == VIPS_FORMAT_USHORT && bits > 0 && bits < BITS)
    return ((1 << bits) - 1) << (BITS - bits);
  return 0;
}

// With numbers as pixels have them, whose white is that of their format, and the tag that turns it
// the right way up.
vips::VImage Normalized(vips::VImage image, Decoding decoding) {
  if (image.coding() == VIPS_CODING_RAD)
    image = image.rad2float();
  const int white = OwnWhite(image);
  const int full = image.format() == VIPS_FORMAT_UCHAR ? 255 : 65535;
  if (white != 0 && white != full)
    image = (image * (static_cast<double>(full) / white)).rint().cast(image.format());
  if (decoding == Decoding::BottomUp) {
    constexpr int FLIPPED = 4; // as EXIF counts
    image = image.copy();
    image.set(VIPS_META_ORIENTATION, FLIPPED);
  }
  return image;
}

// Formats are told apart, and some read, by going back and forth, which a pipe does not. It is read
// once, into a file that each reader opens for itself.
Descriptor KeptStandardInput() {
  static const Descriptor kept = [] {
    Descriptor file = OpenUnnamedFile();
    CopyFile(STDIN_FILENO, file.Number(), ExitCode::BadInput, ShownName(STANDARD_INPUT));
    return file;
  }();
  return OpenRegularFile("/proc/self/fd/" + std::to_string(kept.Number()));
}

} // namespace

std::string ShownName(const std::string& path) {
  return path == STANDARD_INPUT ? "standard input" : path;
}

int ShrinkFor(int side, int wanted) {
  int shrink = 8;
  while (shrink > 1 && side / shrink < wanted)
    shrink /= 2;
  return shrink;
}

vips::VImage OpenImage(const std::string& name, int shrink) {
  Descriptor file = name == STANDARD_INPUT ? KeptStandardInput() : OpenRegularFile(name);
  const std::string path = ShownName(name);
  FileBytes bytes(file.Number(), path);
  const InputFormat& format = FormatOf(bytes);
  if (format.decoding == Decoding::Whole && bytes.Length() > LONGEST_WHOLE_FILE)
    bytes.Refuse("is longer than " + std::to_string(LONGEST_WHOLE_FILE) +
                 " bytes, the most of its format that is read");
  format.check(bytes);
  const bool isShrunk = format.load == Load<vips::VImage::jpegload_source>;
  try {
    auto* options = vips::VImage::option()
                        ->set("access", VIPS_ACCESS_SEQUENTIAL)
                        ->set("fail_on", VIPS_FAIL_ON_WARNING);
    if (isShrunk)
      options->set("shrink", shrink);
    vips::VImage image = Normalized(format.load(std::move(file), options), format.decoding);
    CheckPixels(image, isShrunk ? shrink : 1, format.decoding, bytes);
    return image;
  } catch (const vips::VError&) {
    throw LibraryFailure(ExitCode::BadInput, path);
  }
}

} // namespace limn
