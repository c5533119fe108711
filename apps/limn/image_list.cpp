#include "image_list.h"

#include "failure.h"
#include "posix_file.h"

#include <algorithm>
#include <filesystem>
#include <map>

namespace limn {
namespace {

namespace fs = std::filesystem;

bool IsFolder(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

bool IsSame(const fs::path& one, const fs::path& other) {
  std::error_code error;
  return fs::equivalent(one, other, error) && !error;
}

std::vector<fs::path> WalkFolder(const fs::path& folder, const fs::path& leftOut) {
  std::vector<fs::path> files;
  std::error_code error;
  fs::recursive_directory_iterator entry(folder, error);
  const fs::recursive_directory_iterator end;
  while (!error && entry != end) {
    std::error_code ignored;
    if (entry->is_directory(ignored) && IsSame(entry->path(), leftOut))
      entry.disable_recursion_pending();
    else if (entry->is_regular_file(ignored) && IsWritableName(entry->path().string()))
      files.push_back(entry->path());
    entry.increment(error);
  }
  if (error)
    throw Failure(ExitCode::BadInput, folder.string() + ": " + SystemReason(error.value()));
  std::sort(files.begin(), files.end());
  return files;
}

void RefuseCollisions(const std::vector<ImagePair>& pairs) {
  std::map<fs::path, const ImagePair*> writers;
  for (const ImagePair& pair : pairs) {
    const auto [first, isNew] =
        writers.emplace(fs::path(pair.output.path).lexically_normal(), &pair);
    if (!isNew)
      throw Failure(ExitCode::WrongUsage, first->second->input + " and " + pair.input +
                                              " would both be written to " + pair.output.path);
  }
}

std::vector<ImagePair> ListOne(const std::string& input, const std::string& output) {
  return {{input, ParseOutputName(output)}};
}

} // namespace

std::vector<ImagePair> ListImages(const std::vector<std::string>& inputs, const std::string& output,
                                  Folders folders) {
  if (output.empty())
    throw Failure(ExitCode::WrongUsage, "the output has no name");
  const bool hasFolder = std::any_of(inputs.begin(), inputs.end(), IsFolder);
  const bool isIntoFolder = output.back() == '/' || IsFolder(output) || hasFolder;
  if (inputs.size() > 1 && !isIntoFolder)
    throw Failure(ExitCode::WrongUsage,
                  output + ": must be a folder for several images; end it with a slash");
  if (!isIntoFolder)
    return ListOne(inputs.front(), output);

  std::vector<ImagePair> pairs;
  const fs::path target = output;
  for (const std::string& input : inputs) {
    if (!IsFolder(input)) {
      pairs.push_back({input, {(target / fs::path(input).filename()).string(), ""}});
      continue;
    }
    if (folders == Folders::Refuse)
      throw Failure(ExitCode::WrongUsage, input + ": is a folder; -r lights all images in it");
    for (const fs::path& file : WalkFolder(input, target))
      pairs.push_back({file.string(), {(target / file.lexically_relative(input)).string(), ""}});
  }
  if (pairs.empty())
    throw Failure(ExitCode::BadInput, inputs.front() + ": holds no image");
  RefuseCollisions(pairs);
  return pairs;
}

} // namespace limn
