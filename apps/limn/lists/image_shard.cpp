#include "image_shard.h"

#include "failure.h"

#include <charconv>
#include <cstdlib>
#include <glib.h>
#include <memory>

namespace limn {

Shard ParseShard(const std::string& text) {
  if (text.empty())
    return {};
  Shard shard;
  const char* const end = text.data() + text.size();
  const auto [slash, error] = std::from_chars(text.data(), end, shard.index);
  if (error == std::errc() && slash != end && *slash == '/') {
    const auto [stop, countError] = std::from_chars(slash + 1, end, shard.count);
    if (countError == std::errc() && stop == end && shard.index >= 1 && shard.index <= shard.count)
      return shard;
  }
  throw Failure(ExitCode::WrongUsage,
                "--shard " + text + ": is not of the form I/N, with I from 1 to N");
}

namespace {

uint64_t HashOf(const std::string& text) {
  const std::unique_ptr<char, void (*)(void*)> digest(
      g_compute_checksum_for_string(G_CHECKSUM_SHA256, text.data(),
                                    static_cast<gssize>(text.size())),
      g_free);
  return std::strtoull(std::string(digest.get(), 16).c_str(), nullptr, 16);
}

} // namespace

std::vector<ImagePair> OfShard(std::vector<ImagePair> pairs, Shard shard) {
  std::erase_if(pairs, [&](const ImagePair& pair) {
    return shard.count > 1 && HashOf(pair.place) % shard.count != shard.index - 1;
  });
  return pairs;
}

} // namespace limn
