#include "bracketed_words.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace limn {
namespace {

// No word of a command line holds a NUL byte, so one at the end marks, while they pass the parser,
// words in brackets, which it would split, and "--mask=", for which it would take the next word.
constexpr char MARK = '\0';

std::string Marked(std::string word) {
  const bool isList = word.size() > 1 && word.front() == '[' && word.back() == ']';
  const bool isCutOff = word.starts_with("--") && word.ends_with('=');
  if (isList || isCutOff)
    word += MARK;
  return word;
}

// Every value passes here, before what else checks it.
std::string Unmarked(std::string& word) {
  if (word.ends_with(MARK))
    word.pop_back();
  return word.empty() ? "the value is empty" : "";
}

void CheckValues(CLI::App& app) {
  for (CLI::Option* option : app.get_options([](const CLI::Option*) { return true; }))
    if (option->get_type_size() > 0)
      option->transform(CLI::Validator(Unmarked, ""));
  for (CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    CheckValues(*command);
}

} // namespace

void ParseWhole(CLI::App& app, int argc, char** argv) {
  CheckValues(app);
  std::vector<std::string> reversed; // as the parser takes them
  for (int i = argc - 1; i > 0; --i)
    reversed.push_back(Marked(argv[i]));
  app.parse(std::move(reversed));
}

} // namespace limn
