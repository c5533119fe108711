#include "image_shard.h"

#include "failure.h"

#include <algorithm>
#include <charconv>

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

std::vector<ImagePair> OfShard(std::vector<ImagePair> pairs, Shard shard) {
  if (shard.count == 1)
    return pairs;
  std::sort(pairs.begin(), pairs.end(), [](const ImagePair& one, const ImagePair& other) {
    return one.output.path < other.output.path;
  });
  std::vector<ImagePair> kept;
  for (size_t i = shard.index - 1; i < pairs.size(); i += std::min(shard.count, pairs.size()))
    kept.push_back(std::move(pairs[i]));
  return kept;
}

} // namespace limn
