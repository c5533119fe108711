// From the command line's images and folders to pairs of input and output.
#pragma once

#include "image_output.h"

#include <optional>
#include <string>
#include <vector>

namespace limn {

struct ImagePair {
  std::string input;
  OutputName output;
};

enum class Folders { Refuse, Walk };

struct ImageNames {
  std::vector<std::string> given;
  // From a list, which always goes into a folder: a relative name that stays below the current
  // folder keeps its folders there, any other is written under its last part.
  std::optional<std::vector<std::string>> listed;
};

// names: files and, with Folders::Walk, folders, whose tree is kept in the output. output: a file
// with save options when there is one input file, else a folder (that need not exist yet). In a
// folder, files with the extension of a format that is read and written count, in alphabetical
// order; links to folders are not followed, and the output folder itself is left out. Throws
// Failure(WrongUsage), also when two images would be written to one file, and Failure(BadInput) for
// a folder that cannot be listed and when there is no image at all.
std::vector<ImagePair> ListImages(const ImageNames& names, const std::string& output,
                                  Folders folders);

// Throws Failure(WrongUsage) when two images would be written to one file through links, or one to
// the file of another that is read, or, when there are several, to one that all need. targets:
// where each is written, as ResolveTarget gives it. shared: what all images need.
void RefuseSharedFiles(const std::vector<ImagePair>& pairs, const std::vector<std::string>& targets,
                       const std::vector<std::string>& shared);

} // namespace limn
