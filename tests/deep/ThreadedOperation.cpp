// usage: threaded_operation MODULE
// The operation of libvips on several threads, each of which evaluates on several more: all
// pictures are alike. Made for the thread sanitizer, and quick enough to be run without it.
#include <gmodule.h>
#include <vips/vips8>

#include <cstdio>
#include <thread>
#include <vector>

// What others' libraries do by themselves is theirs; see SeenLocks.cpp for what they do for us.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {
  return "ignore_noninstrumented_modules=1";
}

namespace {

constexpr int WIDTH = 500;
constexpr int HEIGHT = 400;
constexpr int THREADS = 3;

std::vector<uint8_t> Picture(int bands) {
  std::vector<uint8_t> pixels(size_t{WIDTH} * HEIGHT * static_cast<size_t>(bands));
  for (size_t i = 0; i < pixels.size(); ++i)
    pixels[i] = static_cast<uint8_t>(i * 2654435761U >> 24);
  return pixels;
}

vips::VImage Image(std::vector<uint8_t>& pixels, int bands) {
  return vips::VImage::new_from_memory(pixels.data(), pixels.size(), WIDTH, HEIGHT, bands,
                                       VIPS_FORMAT_UCHAR);
}

std::vector<uint8_t> Lit() {
  std::vector<uint8_t> picture = Picture(3);
  std::vector<uint8_t> plane = Picture(1);
  vips::VImage out;
  vips::VImage::call("limn", vips::VImage::option()
                                 ->set("in", Image(picture, 3))
                                 ->set("out", &out)
                                 ->set("style", "Evening Lamp")
                                 ->set("relief", Image(plane, 1))
                                 ->set("mask", Image(plane, 1))
                                 ->set("left", 7));
  size_t size = 0;
  void* memory = out.write_to_memory(&size);
  const auto* bytes = static_cast<const uint8_t*>(memory);
  std::vector<uint8_t> result(bytes, bytes + size);
  g_free(memory);
  return result;
}

bool AllAlike() {
  vips_concurrency_set(1);
  const std::vector<uint8_t> expected = Lit();
  if (expected == Picture(3))
    return false;
  vips_concurrency_set(4);
  std::vector<uint8_t> results[THREADS];
  std::vector<std::thread> threads;
  threads.reserve(THREADS);
  for (std::vector<uint8_t>& result : results)
    threads.emplace_back([&result] {
      result = Lit();
      vips_thread_shutdown();
    });
  for (std::thread& thread : threads)
    thread.join();
  for (const std::vector<uint8_t>& result : results)
    if (result != expected)
      return false;
  return true;
}

} // namespace

int main(int argc, char** argv) {
  if (argc != 2 || VIPS_INIT(argv[0]) != 0 ||
      g_module_open(argv[1], G_MODULE_BIND_LAZY) == nullptr) {
    std::fputs("cannot load the operation\n", stderr);
    return 2;
  }
  try {
    if (!AllAlike()) {
      std::fputs("pictures differ\n", stderr);
      return 1;
    }
  } catch (const vips::VError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  vips_shutdown();
  return 0;
}
