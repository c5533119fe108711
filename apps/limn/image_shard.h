// The share of a batch that one of several runs takes.
#pragma once

#include "image_list.h"

#include <string>
#include <vector>

namespace limn {

// The `index`-th, from 1, of every `count`.
struct Shard {
  size_t index = 1;
  size_t count = 1;
};

// "I/N" with 1 <= I <= N; everything for an empty text. Throws Failure(WrongUsage).
Shard ParseShard(const std::string& text);

// Sorts by the outputs' names and keeps the index-th of every count. Which run takes an image
// depends on the outputs' names alone: not on the order in which the images were named, nor on what
// is written already.
std::vector<ImagePair> OfShard(std::vector<ImagePair> pairs, Shard shard);

} // namespace limn
