#include "image_source.h"

#include "failure.h"
#include "image_file.h"
#include "image_library.h"
#include "posix_file.h"

#include <cerrno>
#include <memory>
#include <unistd.h>

namespace limn {
namespace {

// Reading through these, and not through a mapping, makes a file that shrinks meanwhile a short
// read and not a fault.
gint64 ReadPiece(VipsSourceCustom*, void* buffer, gint64 length, Descriptor* file) {
  for (;;) {
    const ssize_t got = read(file->Number(), buffer, static_cast<size_t>(length));
    if (got >= 0 || errno != EINTR)
      return got;
  }
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

} // namespace

vips::VImage OpenImage(const std::string& path) {
  const vips::VSource source = SourceOf(OpenRegularFile(path));
  if (vips_foreign_find_load_source(source.get_source()) == nullptr) {
    vips_error_clear();
    throw Failure(ExitCode::BadInput,
                  path + ": is not an image of a kind that limn reads, or is damaged at its start");
  }
  try {
    vips::VImage image = vips::VImage::new_from_source(source, "",
                                                       vips::VImage::option()
                                                           ->set("access", VIPS_ACCESS_SEQUENTIAL)
                                                           ->set("fail_on", VIPS_FAIL_ON_WARNING));
    if (image.width() > LONGEST_SIDE || image.height() > LONGEST_SIDE)
      throw Failure(ExitCode::BadInput, path + ": is " + std::to_string(image.width()) + " × " +
                                            std::to_string(image.height()) +
                                            " pixels, and no side may have more than 32767");
    return image;
  } catch (const vips::VError&) {
    throw LibraryFailure(ExitCode::BadInput, path);
  }
}

} // namespace limn
