// Names of outputs made from a pattern: "lit/{name}-{style}.{ext}".
#pragma once

#include <string>

namespace limn {

// What a pattern's words stand for.
struct PatternWords {
  std::string name;  // the image's, without extension, with its folders in a tree or a list
  std::string style; // as LabelOf gives it
  std::string ext;   // of what is written, without the dot
};

// Whether a word in braces is in the text: only then it is a pattern.
bool IsPattern(const std::string& text);

// The pattern with its words replaced; "{{" stands for a brace. Throws Failure(WrongUsage) for a
// word that there is not.
std::string FilledPattern(const std::string& pattern, const PatternWords& words);

} // namespace limn
