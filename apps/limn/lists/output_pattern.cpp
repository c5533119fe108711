#include "output_pattern.h"

#include "failure.h"

#include "LM_nearest_word.h"

#include <vector>

namespace limn {
namespace {

const std::vector<std::string> WORDS = {"name", "style", "ext"};

// The letters in braces at `at`, or nothing.
std::string WordAt(const std::string& text, size_t at) {
  const size_t end = text.find_first_not_of("abcdefghijklmnopqrstuvwxyz", at + 1);
  const bool isWord = text[at] == '{' && end != std::string::npos && text[end] == '}';
  return isWord ? text.substr(at + 1, end - at - 1) : "";
}

} // namespace

bool IsPattern(const std::string& text) {
  for (size_t at = 0; at < text.size(); ++at)
    if (!WordAt(text, at).empty())
      return true;
  return false;
}

std::string FilledPattern(const std::string& pattern, const PatternWords& words) {
  std::string filled;
  for (size_t at = 0; at < pattern.size(); ++at) {
    const std::string word = WordAt(pattern, at);
    if (word.empty()) {
      filled += pattern[at];
      at += pattern.compare(at, 2, "{{") == 0 ? 1 : 0;
      continue;
    }
    if (word != "name" && word != "style" && word != "ext")
      throw Failure(ExitCode::WrongUsage, pattern + ": there is no {" + word +
                                              "}, only {name}, {style} and {ext}" +
                                              LM_DidYouMean(word, WORDS));
    filled += word == "name" ? words.name : word == "style" ? words.style : words.ext;
    at += word.size() + 1;
  }
  return filled;
}

} // namespace limn
