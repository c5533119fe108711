#include "LM_nearest_word.h"

#include <algorithm>

namespace {

char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string Lowered(std::string_view word) {
  std::string lowered(word);
  std::transform(lowered.begin(), lowered.end(), lowered.begin(), Lower);
  return lowered;
}

// How many letters have to be put in, left out, replaced, or exchanged with the next one.
size_t Distance(const std::string& one, const std::string& other) {
  std::vector<size_t> beforeLast(other.size() + 1);
  std::vector<size_t> last(other.size() + 1);
  std::vector<size_t> present(other.size() + 1);
  for (size_t j = 0; j <= other.size(); ++j)
    last[j] = j;
  for (size_t i = 1; i <= one.size(); ++i) {
    present[0] = i;
    for (size_t j = 1; j <= other.size(); ++j) {
      const size_t replaced = last[j - 1] + (one[i - 1] == other[j - 1] ? 0 : 1);
      present[j] = std::min({replaced, last[j] + 1, present[j - 1] + 1});
      if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
        present[j] = std::min(present[j], beforeLast[j - 2] + 1);
    }
    beforeLast.swap(last);
    last.swap(present);
  }
  return last[other.size()];
}

} // namespace

bool LM_SameWord(std::string_view one, std::string_view other) {
  return Lowered(one) == Lowered(other);
}

std::string LM_DidYouMean(std::string_view typed, const std::vector<std::string>& words,
                          const std::vector<std::string>& said) {
  constexpr size_t LONGEST = 64;
  constexpr size_t SHORTEST_PART = 4;
  if (typed.empty() || typed.size() > LONGEST)
    return "";
  const std::string lowered = Lowered(typed);
  size_t least = std::max<size_t>(typed.size() / 3, 1) + 1;
  std::string meant;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string word = Lowered(words[i].substr(0, LONGEST));
    const bool isPart = typed.size() >= SHORTEST_PART && word.find(lowered) != std::string::npos;
    const size_t distance = isPart && word != lowered ? 1 : Distance(lowered, word);
    if (distance < least) {
      least = distance;
      meant = "; did you mean " + said[i] + "?";
    }
  }
  return meant;
}
