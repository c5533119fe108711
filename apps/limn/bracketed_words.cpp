#include "bracketed_words.h"

#include <string>
#include <vector>

namespace limn {
namespace {

// No word of a command line holds a NUL byte, so one at the end marks the words in brackets while
// they pass the parser.
constexpr char MARK = '\0';

std::string Marked(std::string word) {
  if (word.size() > 1 && word.front() == '[' && word.back() == ']')
    word += MARK;
  return word;
}

std::string Unmarked(std::string word) {
  if (!word.empty() && word.back() == MARK)
    word.pop_back();
  return word;
}

void UnmarkValues(CLI::App& app) {
  for (CLI::Option* option : app.get_options([](const CLI::Option*) { return true; }))
    if (option->get_type_size() > 0)
      option->transform(Unmarked);
  for (CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    UnmarkValues(*command);
}

} // namespace

void ParseWhole(CLI::App& app, int argc, char** argv) {
  UnmarkValues(app);
  std::vector<std::string> reversed; // as the parser takes them
  for (int i = argc - 1; i > 0; --i)
    reversed.push_back(Marked(argv[i]));
  app.parse(std::move(reversed));
}

} // namespace limn
