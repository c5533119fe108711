#include "image_output.h"

#include "colour_conversion.h"
#include "failure.h"
#include "format_limits.h"
#include "image_library.h"
#include "metadata.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace limn {
namespace {

using vips::VImage;

enum class Exif { Lost, Kept };
// What writers need that, short of memory, may end well with a worse picture than asked for (ROOM),
// or without having written all, or anything (READ_BACK), as refusing their allocations has shown.
enum Proof : unsigned { NONE = 0, ROOM = 1, READ_BACK = 2 };

// suffix: by which libvips knows the format that is written; null for one that is only read.
// options: that select it there, and defaults that the user's own override.
struct Format {
  std::string_view extension;
  const char* suffix;
  const char* options;
  int maxPlanes;
  Exif exif;
  unsigned proof;
  bool isRead;
  int leastBits = 8; // a channel; 32 of floats
  int mostBits = 8;
};

constexpr int ANY_NUMBER = 1000;

// Measured on photographs (docs/performance.md): good enough to edit further, at nearly the speed
// of libvips' own 75 with the same colour resolution; and PNG files a fifth smaller than libvips'
// own in two thirds of the time.
constexpr const char* JPEG_DEFAULTS = "Q=90,subsample-mode=on";
constexpr const char* PNG_DEFAULTS = "compression=1,filter=sub";
// Without libvips' comment that tells the time: the same picture gives the same bytes.
constexpr const char* PPM_DEFAULTS = "strip";
constexpr const char* PFM_DEFAULTS = "strip,format=pfm";

// Formats in one file that hold a photograph. Folders of tiles, tables of numbers and the like are
// not among them. Files are read by their content (image_source.cpp); here are the names of those
// that are.
constexpr Format WRITTEN_FORMATS[] = {
    {".jpg", ".jpg", JPEG_DEFAULTS, 3, Exif::Kept, NONE, true},
    {".jpeg", ".jpg", JPEG_DEFAULTS, 3, Exif::Kept, NONE, true},
    {".jpe", ".jpg", JPEG_DEFAULTS, 3, Exif::Kept, NONE, true},
    {".png", ".png", PNG_DEFAULTS, 4, Exif::Kept, NONE, true, 8, 16},
    {".tif", ".tif", "", ANY_NUMBER, Exif::Lost, READ_BACK, true, 8, 32},
    {".tiff", ".tif", "", ANY_NUMBER, Exif::Lost, READ_BACK, true, 8, 32},
    {".webp", ".webp", "", 4, Exif::Kept, NONE, true},
    {".ppm", ".ppm", PPM_DEFAULTS, 3, Exif::Lost, NONE, true, 8, 16},
    {".pnm", ".ppm", PPM_DEFAULTS, 3, Exif::Lost, NONE, true, 8, 16},
    {".pfm", ".ppm", PFM_DEFAULTS, 3, Exif::Lost, NONE, true, 32, 32},
    {".heic", ".heic", "", 4, Exif::Kept, READ_BACK, true, 8, 12},
    {".heif", ".heif", "", 4, Exif::Kept, READ_BACK, true, 8, 12},
    {".avif", ".heif", "compression=av1", 4, Exif::Kept, READ_BACK, true, 8, 12},
    {".jp2", ".jp2", "", ANY_NUMBER, Exif::Lost, ROOM, false},
    {".gif", ".gif", "", 4, Exif::Lost, ROOM | READ_BACK, true},
    {".pgm", nullptr, "", 0, Exif::Lost, NONE, true},
    {".pbm", nullptr, "", 0, Exif::Lost, NONE, true},
    {".hdr", nullptr, "", 0, Exif::Lost, NONE, true},
    {".exr", nullptr, "", 0, Exif::Lost, NONE, true},
};

const Format* FindFormat(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  for (char& letter : extension)
    letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  for (const Format& format : WRITTEN_FORMATS)
    if (extension == format.extension)
      return &format;
  return nullptr;
}

const Format& FormatOf(const std::string& path) {
  const Format* format = FindFormat(path);
  if (format == nullptr || format->suffix == nullptr)
    throw Failure(ExitCode::WrongUsage,
                  path + ": its extension is not one of a format that limn writes");
  return *format;
}

bool IsFor(const Format& format, Use use) {
  return use == Use::Reading ? format.isRead : format.suffix != nullptr;
}

// "[compression=av1,Q=92]" from the format's own options and the user's.
std::string AllOptions(const Format& format, const std::string& options) {
  const std::string users = options.empty() ? "" : options.substr(1, options.size() - 2);
  const std::string own = format.options;
  return "[" + own + (own.empty() || users.empty() ? "" : ",") + users + "]";
}

void DropPlanes(VImage& image, const Format& format, std::vector<std::string>& notices) {
  if (image.bands() <= format.maxPlanes)
    return;
  const std::string name(format.extension.substr(1));
  notices.push_back(format.maxPlanes == 3 && image.bands() == 4
                        ? "its alpha channel is left out, since " + name + " has none"
                        : "only " + std::to_string(format.maxPlanes) + " of its " +
                              std::to_string(image.bands()) + " channels are written, since " +
                              name + " has no more");
  image = image.extract_band(0, VImage::option()->set("n", format.maxPlanes));
}

// Says what libvips does not write, and leaves out what a JPEG file cannot hold: there such data go
// into one segment of at most 64 kB.
void DropMetadata(VImage& image, const Format& format, std::vector<std::string>& notices) {
  constexpr size_t LARGEST = 65000;
  if (format.exif == Exif::Lost && image.get_typeof(VIPS_META_EXIF_NAME) != 0)
    notices.push_back("its EXIF data is not written into " +
                      std::string(format.extension.substr(1)) + " files");
  if (std::string_view(format.suffix) != ".jpg")
    return;
  for (const char* field : {VIPS_META_EXIF_NAME, VIPS_META_XMP_NAME, VIPS_META_IPTC_NAME}) {
    if (BytesOf(image, field).size() <= LARGEST)
      continue;
    image.remove(field);
    notices.push_back("its " + std::string(field) + " is left out, too large for a jpg file");
  }
}

// The search for a GIF's colours does not fail when memory runs short, it settles for worse ones;
// and the coder of JPEG 2000 leaves out detail. So there has to be enough before they start.
void NeedRoom(const VImage& image, const std::string& path) {
  constexpr size_t BYTES_A_PIXEL = 32;
  constexpr size_t BESIDE = 512 << 20; // for threads, each with a heap of its own
  const uint64_t size = VIPS_IMAGE_N_PELS(image.get_image()) * BYTES_A_PIXEL + BESIDE;
  const std::unique_ptr<void, void (*)(void*)> room(
      size < SIZE_MAX / 2 ? std::malloc(static_cast<size_t>(size)) : nullptr, std::free);
  if (room == nullptr)
    throw Failure(ExitCode::NoMemory, path + ": not enough memory");
}

// Has the writer say what it has to say about its options, which is not about the image.
void TryOptions(const Format& format, const OutputName& name) {
  try {
    const VImage small =
        VImage::black(16, 16, VImage::option()->set("bands", 3))
            .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
    small.write_to_target((format.suffix + AllOptions(format, name.options)).c_str(),
                          vips::VTarget::new_to_memory());
  } catch (const vips::VError&) {
    // Some encoders come in packages of their own.
    const bool lacksEncoder =
        std::strstr(vips_error_buffer(), "Unsupported compression") != nullptr;
    vips_error_clear(); // an image of another size may suit it
    if (lacksEncoder)
      throw Failure(ExitCode::WrongUsage,
                    name.path + ": nothing here encodes " +
                        std::string(format.extension.substr(1)) +
                        " files (from Debian 13 on, libheif-plugin-x265 does HEIC, and "
                        "libheif-plugin-aomenc AVIF)");
  }
}

// While an image is written to a file, has the disk begin with each few megabytes.
class EarlyFlush {
public:
  EarlyFlush(const AtomicFile& file, VipsImage* image) : _file(file) {
    vips_image_set_progress(image, TRUE);
    _teller = image->progress_signal; // an earlier image of the pipeline, if that tells already
    g_object_ref(_teller);
    _handler = g_signal_connect(_teller, "eval", G_CALLBACK(_Grow), this);
  }
  EarlyFlush(const EarlyFlush&) = delete;
  EarlyFlush& operator=(const EarlyFlush&) = delete;
  ~EarlyFlush() {
    g_signal_handler_disconnect(_teller, _handler);
    g_object_unref(_teller);
  }

private:
  static void _Grow(VipsImage*, VipsProgress*, EarlyFlush* self) {
    constexpr off_t STEP = 16 << 20;
    struct stat status {};
    if (fstat(self->_file.DescriptorNumber(), &status) != 0 || status.st_size < self->_begun + STEP)
      return;
    self->_begun = status.st_size;
    self->_file.StartFlush();
  }

  const AtomicFile& _file;
  VipsImage* _teller;
  gulong _handler;
  off_t _begun = 0;
};

int ReadAndForget(VipsRegion*, void*, void*, void*, gboolean*) {
  return 0;
}

// Whether what was written can be read; its first page, where the user wanted several. Pixels that
// nothing compresses need only be there.
bool IsWhole(int descriptor, const std::string& path, const VImage& image) {
  try {
    lseek(descriptor, 0, SEEK_SET);
    const VImage written =
        VImage::new_from_source(vips::VSource::new_from_descriptor(descriptor), "",
                                VImage::option()
                                    ->set("access", VIPS_ACCESS_SEQUENTIAL)
                                    ->set("fail_on", VIPS_FAIL_ON_ERROR));
    if (written.width() != image.width() || written.height() > image.height())
      return false;
    FileBytes bytes(descriptor, path);
    return HoldsPlainPixels(bytes, VIPS_IMAGE_SIZEOF_IMAGE(image.get_image())) ||
           vips_sink(written.get_image(), nullptr, ReadAndForget, nullptr, nullptr, nullptr) == 0;
  } catch (const vips::VError&) {
    return false;
  }
}

} // namespace

OutputName ParseOutputName(const std::string& text) {
  const size_t bracket = text.rfind('[');
  if (text.empty() || text.back() != ']' || bracket == std::string::npos || bracket == 0)
    return {text, ""};
  return {text.substr(0, bracket), text.substr(bracket)};
}

bool IsName(const std::string& path, Use use) {
  const Format* format = FindFormat(path);
  return format != nullptr && IsFor(*format, use);
}

std::vector<std::string> Extensions(Use use) {
  std::vector<std::string> extensions;
  for (const Format& format : WRITTEN_FORMATS)
    if (IsFor(format, use))
      extensions.emplace_back(format.extension);
  return extensions;
}

OutputBits BitsOf(const OutputName& name) {
  const Format& format = FormatOf(name.path);
  OutputBits bits{format.leastBits, format.mostBits};
  // Compressions of TIFF and a kind of PNG that take bytes alone.
  for (const char* option : {"compression=jpeg", "compression=webp", "palette"})
    if (name.options.find(option) != std::string::npos)
      bits.most = 8;
  constexpr std::string_view BITS = "bitdepth=";
  if (const size_t at = name.options.find(BITS); at != std::string::npos)
    bits.most =
        std::min(bits.most, std::max(8, std::atoi(name.options.c_str() + at + BITS.size())));
  return bits;
}

bool HoldsXmp(const OutputName& name) {
  const std::string_view suffix = FormatOf(name.path).suffix;
  return suffix == ".jpg" || suffix == ".png" || suffix == ".tif" || suffix == ".webp" ||
         suffix == ".heic" || suffix == ".heif";
}

VipsBandFormat DepthOfBits(int bits) {
  return bits <= 8 ? VIPS_FORMAT_UCHAR : bits <= 16 ? VIPS_FORMAT_USHORT : VIPS_FORMAT_FLOAT;
}

void CheckOutputFormat(const OutputName& name) {
  const Format& format = FormatOf(name.path);
  // libheif 1.15, which Debian 12 has beside its libvips, asks the encoder for what it ends over.
  const bool isOldEncoder = vips_version(0) == 8 && vips_version(1) < 15;
  const int bits = BitsOf(name).most;
  if (isOldEncoder && format.extension == ".avif" && bits > 8 && bits < 12)
    throw Failure(ExitCode::WrongUsage,
                  name.path + name.options +
                      ": this machine's AV1 encoder takes 8 or 12 bits, and ends over 10");
  const Complaints complaints;
  const char* saver = vips_foreign_find_save_target(format.suffix);
  if (saver == nullptr)
    throw Failure(ExitCode::WrongUsage, name.path + ": this libvips cannot write " +
                                            std::string(format.extension.substr(1)) + " files");
  const std::unique_ptr<VipsOperation, void (*)(void*)> operation(vips_operation_new(saver),
                                                                  g_object_unref);
  if (operation == nullptr ||
      vips_object_set_from_string(VIPS_OBJECT(operation.get()),
                                  AllOptions(format, name.options).c_str()) != 0)
    throw LibraryFailure(ExitCode::WrongUsage, name.path + name.options);
  const bool hasPlugins = std::string_view(format.suffix).starts_with(".hei");
  if (!name.options.empty() || hasPlugins)
    TryOptions(format, name);
  complaints.Check(ExitCode::WrongUsage, name.path + name.options);
}

void WriteImage(const WrittenImage& image, const OutputName& name, const std::string& target,
                Existing existing, const Complaints& complaints,
                std::vector<std::string>& notices) {
  const Format& format = FormatOf(name.path);
  if ((format.proof & ROOM) != 0)
    NeedRoom(image.planes, name.path);
  AtomicFile file(target, existing);
  try {
    VImage planes =
        image.planes.format() != VIPS_FORMAT_UCHAR
            ? image.planes
            : image.planes.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
    DropPlanes(planes, format, notices);
    if (format.leastBits == 32) // PFM, whose lowest row is its first
      planes = planes.copy_memory().flipver();
    planes = WithMetadata(planes, image.metadata);
    DropMetadata(planes, format, notices);
    const EarlyFlush flush(file, planes.get_image());
    planes.write_to_target((format.suffix + AllOptions(format, name.options)).c_str(),
                           vips::VTarget::new_to_descriptor(file.DescriptorNumber()));
  } catch (const vips::VError&) {
    if (image.hasSourceFailed != nullptr && *image.hasSourceFailed)
      throw LibraryFailure(ExitCode::BadInput, image.source);
    file.CheckRoom(); // not every library tells why it could not write
    throw LibraryFailure(ExitCode::CannotWrite, name.path);
  }
  // Of a picture of one strip, libvips 8.14 may forget that its pixels could not be had.
  if (image.hasSourceFailed != nullptr && *image.hasSourceFailed)
    throw LibraryFailure(ExitCode::BadInput, image.source);
  if (image.source.empty())
    complaints.Check(ExitCode::CannotWrite, name.path);
  else
    complaints.Check(ExitCode::BadInput, image.source);
  if ((format.proof & READ_BACK) != 0 && !IsWhole(file.DescriptorNumber(), name.path, image.planes))
    throw Failure(ExitCode::NoMemory, name.path + ": not enough memory");
  file.Commit();
}

void WritePhotograph(Photograph& photograph, VImage planes, const OutputName& name,
                     const std::string& target, Existing existing) {
  const Complaints complaints;
  VImage metadata = photograph.metadata;
  const OutputBits held = BitsOf(name);
  const VipsBandFormat depth =
      std::clamp(photograph.depth, DepthOfBits(held.least), DepthOfBits(held.most));
  if (depth != photograph.depth) {
    if (depth < photograph.depth)
      photograph.notices.push_back(DepthNotice(NumBits(photograph.depth), NumBits(depth)));
    planes = ToRgbPlanes(WithMetadata(planes, metadata), depth, photograph.notices);
    metadata = CopyMetadata(planes, photograph.notices);
  }
  WriteImage({planes, metadata, "", nullptr}, name, target, existing, complaints,
             photograph.notices);
}

} // namespace limn
