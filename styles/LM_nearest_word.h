// What somebody may have meant who mistyped a word.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Whether the words are the same but for the case of ASCII letters.
bool LM_SameWord(std::string_view one, std::string_view other);

// "; did you mean WORD?" with the nearest of the words, for the end of a sentence, or nothing when
// none is near. said: what stands for each of the words in the sentence.
std::string LM_DidYouMean(std::string_view typed, const std::vector<std::string>& words,
                          const std::vector<std::string>& said);
inline std::string LM_DidYouMean(std::string_view typed, const std::vector<std::string>& words) {
  return LM_DidYouMean(typed, words, words);
}
