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
    else if (entry->is_regular_file(ignored) && IsName(entry->path().string(), Use::Reading) &&
             IsName(entry->path().string(), Use::Writing))
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

// A path without links, as far as it exists.
fs::path RealPath(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::weakly_canonical(path, error);
  return error ? fs::path(path) : real;
}

// The name below the output folder of an image that a list names.
fs::path PlaceOf(const fs::path& listed) {
  const fs::path place = listed.lexically_normal();
  const bool isBelow = place.is_relative() && !place.empty() && *place.begin() != "..";
  return isBelow ? place : place.filename();
}

// Adds what one name stands for. place: where it goes below the output folder; a folder's content
// goes right into that of a named one.
void AddName(const std::string& name, const fs::path& target, const fs::path& place,
             Folders folders, std::vector<ImagePair>& pairs) {
  if (!IsFolder(name)) {
    pairs.push_back({name, {(target / place).string(), ""}});
    return;
  }
  if (folders == Folders::Refuse)
    throw Failure(ExitCode::WrongUsage, name + ": is a folder; -r lights all images in it");
  for (const fs::path& file : WalkFolder(name, target))
    pairs.push_back({file.string(), {(target / file.lexically_relative(name)).string(), ""}});
}

} // namespace

std::vector<ImagePair> ListImages(const ImageNames& names, const std::string& output,
                                  Folders folders) {
  if (output.empty())
    throw Failure(ExitCode::WrongUsage, "the output has no name");
  const bool hasFolder = std::any_of(names.given.begin(), names.given.end(), IsFolder);
  const bool isIntoFolder = output.back() == '/' || IsFolder(output) || hasFolder;
  if ((names.given.size() > 1 || names.listed) && !isIntoFolder)
    throw Failure(ExitCode::WrongUsage,
                  output + ": must be a folder for several images; end it with a slash");
  if (!isIntoFolder)
    return {{names.given.front(), ParseOutputName(output)}};

  std::vector<ImagePair> pairs;
  for (const std::string& name : names.given)
    AddName(name, output, fs::path(name).filename(), folders, pairs);
  for (const std::string& name : names.listed.value_or(std::vector<std::string>()))
    AddName(name, output, PlaceOf(name), folders, pairs);
  if (pairs.empty())
    throw Failure(ExitCode::BadInput, names.given.empty()
                                          ? "the list names no image"
                                          : names.given.front() + ": holds no image");
  RefuseCollisions(pairs);
  return pairs;
}

void RefuseSharedFiles(const std::vector<ImagePair>& pairs, const std::vector<std::string>& targets,
                       const std::vector<std::string>& shared) {
  std::map<fs::path, size_t> writers;
  for (size_t i = 0; i < pairs.size(); ++i) {
    const auto [first, isNew] = writers.emplace(RealPath(targets[i]), i);
    if (!isNew)
      throw Failure(ExitCode::WrongUsage, pairs[first->second].input + " and " + pairs[i].input +
                                              " would both be written to " + targets[i]);
  }
  for (size_t i = 0; i < pairs.size(); ++i)
    if (const auto writer = writers.find(RealPath(pairs[i].input));
        writer != writers.end() && writer->second != i)
      throw Failure(ExitCode::WrongUsage, pairs[i].input + ": would be replaced by the lit " +
                                              pairs[writer->second].input +
                                              ", perhaps before it is read");
  for (const std::string& file : shared)
    if (pairs.size() > 1 && writers.contains(RealPath(file)))
      throw Failure(ExitCode::WrongUsage,
                    file + ": is used for all images, and would be replaced by a lit one");
}

} // namespace limn
