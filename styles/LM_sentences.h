// What readers of styles and words say of what they cannot take.
#pragma once

#include <functional>
#include <iterator>
#include <string>
#include <utility>

// Says why, and that it failed.
inline bool LM_Fails(std::string& why, std::string sentence) {
  why = std::move(sentence);
  return false;
}

// A word of each, as in "directional, omni or spot". word: what gives it.
template <class Range, class Word> std::string LM_OneOf(const Range& range, Word word) {
  std::string text;
  for (const auto& one : range) {
    if (!text.empty())
      text += &one == &*std::rbegin(range) ? " or " : ", ";
    text += std::invoke(word, one);
  }
  return text;
}
