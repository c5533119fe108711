// From the command line's images and folders to pairs of input and output.
#pragma once

#include "failure.h"
#include "image_output.h"

#include <optional>
#include <string>
#include <vector>

namespace limn {

struct ImagePair {
  std::string input;
  OutputName output;
  std::string place;  // the output's name below the output folder, or all of it
  size_t style = 0;   // the number of its style
  std::string target; // where the output really goes, once it is known; see ResolveTarget
};

enum class Folders { Refuse, Walk };

struct ImageNames {
  std::vector<std::string> given;
  // From a list, which always goes into a folder: a relative name that stays below the current
  // folder keeps its folders there, any other is written under its last part.
  std::optional<std::vector<std::string>> listed;
};

struct OutputRule {
  std::string output;              // a file with save options, a folder, a pattern, or "-"
  std::string format;              // an extension with save options, or empty
  std::vector<std::string> styles; // what to call each, one at least
};

// A name or a folder that cannot be listed.
struct UnlistedName {
  std::string name;
  std::string why;
};

struct ImageList {
  std::vector<ImagePair> pairs;
  std::vector<UnlistedName> failures;
};

// names: files and, with Folders::Walk, folders, whose tree is kept in the output. Each image is
// written once for each style: to the file or standard output when there is one input file, else
// into the folder (that need not exist yet) or where the pattern says. In a folder, files with the
// extension of a format that is read and written count, in alphabetical order; links to folders are
// not followed, and the output folder itself is left out. Throws Failure(WrongUsage), also when two
// images would be written to one file, and Failure(BadInput) when there is no image and nothing
// that failed.
ImageList ListImages(const ImageNames& names, const OutputRule& rule, Folders folders);

// Throws Failure(WrongUsage) when two images would be written to one file through links, or one to
// the file of another that is read, or, when there are several, to one that all need. The pairs
// have their targets. shared: what all images need.
void RefuseSharedFiles(const std::vector<ImagePair>& pairs, const std::vector<std::string>& shared);

} // namespace limn
