// The share of a batch that one of several runs takes.
#pragma once

#include "image_list.h"

#include <string>
#include <vector>

namespace limn {

// Part `index`, from 1, of `count`.
struct Shard {
  uint64_t index = 1;
  uint64_t count = 1;
};

// "I/N" with 1 <= I <= N; everything for an empty text. Throws Failure(WrongUsage).
Shard ParseShard(const std::string& text);

// Keeps the images of that part. The first sixteen hexadecimal digits of the SHA-256 of an image's
// place, as a number, modulo the count, are the part that takes it, less one: other images, their
// order, and what is written already do not matter.
std::vector<ImagePair> OfShard(std::vector<ImagePair> pairs, Shard shard);

} // namespace limn
