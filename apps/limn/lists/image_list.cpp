#include "image_list.h"

#include "image_source.h"
#include "output_pattern.h"
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

// Adds the files of a folder and of those in it. One that cannot be listed is a failure of its own.
void WalkFolder(const fs::path& folder, const fs::path& leftOut, std::vector<fs::path>& files,
                std::vector<UnlistedName>& failures) {
  std::error_code error;
  std::vector<fs::path> inner;
  for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    std::error_code ignored;
    const bool isFolder = entry->is_directory(ignored);
    if (isFolder && !entry->is_symlink(ignored) && !IsSame(entry->path(), leftOut))
      inner.push_back(entry->path());
    else if (entry->is_regular_file(ignored) && IsName(entry->path().string(), Use::Reading) &&
             IsName(entry->path().string(), Use::Writing))
      files.push_back(entry->path());
  }
  if (error)
    failures.push_back({folder.string(), SystemReason(error.value())});
  for (const fs::path& each : inner)
    WalkFolder(each, leftOut, files, failures);
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

// An image, and its name below the output folder.
struct Named {
  fs::path file;
  fs::path place;
};

// Adds what one name stands for. place: where it goes below the output folder; a folder's content
// goes right into that of a named one.
void AddName(const std::string& name, const fs::path& target, const fs::path& place,
             Folders folders, std::vector<Named>& found, ImageList& list) {
  std::error_code error;
  if (!IsFolder(name)) {
    if (folders == Folders::Walk && name != STANDARD_INPUT && !fs::exists(name, error))
      list.failures.push_back({name, "there is no such folder or file"});
    else
      found.push_back({name, place});
    return;
  }
  if (folders == Folders::Refuse)
    throw Failure(ExitCode::WrongUsage, name + ": is a folder; -r lights all images in it");
  std::vector<fs::path> files;
  WalkFolder(name, target, files, list.failures);
  std::sort(files.begin(), files.end());
  for (const fs::path& file : files)
    found.push_back({file, file.lexically_relative(name)});
}

// What a rule says of the names of outputs.
class OutputNames {
public:
  OutputNames(const OutputRule& rule, bool isIntoFolder)
      : _rule(rule), _isIntoFolder(isIntoFolder), _format(ParseOutputName("." + rule.format)) {
    const std::string& output = rule.output;
    _isPattern = IsPattern(output);
    const bool isBare = output == STANDARD_OUTPUT;
    if (!rule.format.empty() && !IsName("x" + _format.path, Use::Writing))
      throw Failure(ExitCode::WrongUsage, "--format " + rule.format + ": is no format to write");
    if (!rule.format.empty() && !isBare && !_isPattern && !isIntoFolder)
      throw Failure(ExitCode::WrongUsage,
                    output + ": says its format already; --format is for -, folders and patterns");
    if (isBare && rule.format.empty())
      throw Failure(ExitCode::WrongUsage,
                    "-: needs a format, by --format or as in -o -.png or -o '-.jpg[Q=90]'");
    if (rule.styles.size() > 1 && output.find("{style}") == std::string::npos)
      throw Failure(ExitCode::WrongUsage, output + ": must tell several styles apart, as in "
                                                   "-o 'lit/{name}-{style}.{ext}'");
  }

  ImagePair PairOf(const Named& named, size_t style) const {
    ImagePair pair{named.file.string(), {}, "", style, ""};
    if (_isPattern) {
      const std::string extension =
          (_rule.format.empty() ? named.file : fs::path("x" + _format.path)).extension().string();
      const fs::path name = fs::path(named.place).replace_extension();
      pair.output = ParseOutputName(
          FilledPattern(_rule.output, {name.string(), _rule.styles[style],
                                       extension.substr(extension.empty() ? 0 : 1)}));
    } else if (_isIntoFolder) {
      fs::path place = named.place;
      if (!_rule.format.empty())
        place.replace_extension(_format.path);
      pair.output.path = (_rule.output / place).string();
      pair.place = place.string();
    } else {
      pair.output = _rule.output == STANDARD_OUTPUT ? OutputName{"-" + _format.path, ""}
                                                    : ParseOutputName(_rule.output);
    }
    if (!_rule.format.empty())
      pair.output.options = _format.options;
    if (pair.place.empty())
      pair.place = pair.output.path;
    return pair;
  }

private:
  const OutputRule& _rule;
  bool _isIntoFolder;
  bool _isPattern;
  OutputName _format; // ".jpg" and its options
};

// One image goes through a pipe.
void RefusePipes(const ImageList& list) {
  const auto isPiped = [](const ImagePair& pair) {
    return pair.input == STANDARD_INPUT || IsStandardOutput(pair.output.path);
  };
  const auto piped = std::find_if(list.pairs.begin(), list.pairs.end(), isPiped);
  if (piped != list.pairs.end() && (list.pairs.size() > 1 || !list.failures.empty()))
    throw Failure(ExitCode::WrongUsage,
                  "-: standard input and output take one image, in one style");
}

} // namespace

ImageList ListImages(const ImageNames& names, const OutputRule& rule, Folders folders) {
  const std::string& output = rule.output;
  const bool isPattern = IsPattern(output);
  const bool hasFolder = std::any_of(names.given.begin(), names.given.end(), IsFolder);
  const bool isIntoFolder = !isPattern && (output.ends_with('/') || IsFolder(output) || hasFolder);
  if ((names.given.size() > 1 || names.listed) && !isIntoFolder && !isPattern)
    throw Failure(ExitCode::WrongUsage,
                  output + ": must be a folder for several images; end it with a slash");
  const OutputNames outputs(rule, isIntoFolder);
  const bool takesPipe = names.given.size() == 1 && names.given.front() == STANDARD_INPUT;
  if (takesPipe && (isIntoFolder || isPattern))
    throw Failure(ExitCode::WrongUsage, output + ": standard input has no name; -o has to say it");

  ImageList list;
  std::vector<Named> found;
  const std::string target =
      isPattern ? fs::path(output.substr(0, output.find('{'))).parent_path().string() : output;
  for (const std::string& name : names.given)
    AddName(name, target, fs::path(name).filename(), folders, found, list);
  for (const std::string& name : names.listed.value_or(std::vector<std::string>()))
    AddName(name, target, PlaceOf(name), folders, found, list);
  if (found.empty() && list.failures.empty())
    throw Failure(ExitCode::BadInput, names.given.empty()
                                          ? "the list names no image"
                                          : names.given.front() + ": holds no image");
  for (const Named& named : found)
    for (size_t style = 0; style < rule.styles.size(); ++style)
      list.pairs.push_back(outputs.PairOf(named, style));
  RefuseCollisions(list.pairs);
  RefusePipes(list);
  return list;
}

void RefuseSharedFiles(const std::vector<ImagePair>& pairs,
                       const std::vector<std::string>& shared) {
  std::map<fs::path, size_t> writers;
  for (size_t i = 0; i < pairs.size(); ++i) {
    const auto [first, isNew] = writers.emplace(RealPath(pairs[i].target), i);
    if (!isNew)
      throw Failure(ExitCode::WrongUsage, pairs[first->second].input + " and " + pairs[i].input +
                                              " would both be written to " + pairs[i].target);
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
