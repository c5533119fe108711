#include "usage_answer.h"

#include "LM_nearest_word.h"

#include <algorithm>
#include <filesystem>
#include <vector>

namespace limn {
namespace {

std::vector<std::string> CommandsOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    names.push_back(command->get_name());
  return names;
}

// The innermost command that was named.
const CLI::App& NamedCommand(const CLI::App& app) {
  const std::vector<CLI::App*> named = app.get_subcommands();
  return named.empty() ? app : NamedCommand(*named.front());
}

std::vector<std::string> OptionsOf(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames())
      names.push_back("--" + name);
    for (const std::string& name : option->get_snames())
      names.push_back("-" + name);
  }
  return names;
}

bool IsFileName(const std::string& word) {
  std::error_code error;
  return word.find_first_of("./") != std::string::npos || std::filesystem::exists(word, error);
}

std::string AboutWord(const CLI::App& command, const std::string& word) {
  if (word.starts_with('-'))
    return word + ": there is no such option" +
           LM_DidYouMean(word.substr(0, word.find('=')), OptionsOf(command));
  const std::vector<std::string> names = CommandsOf(command);
  if (names.empty())
    return word + ": is one word too many for limn " + command.get_name();
  const std::string meant = LM_DidYouMean(word, names);
  if (meant.empty() && IsFileName(word))
    return word + ": is no command; to light it, limn apply " + word + " -o OUTPUT";
  return word + ": there is no such command" + meant;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string joined;
  for (const std::string& word : words)
    joined += (joined.empty() ? "" : ", ") + word;
  return joined;
}

} // namespace

std::string UsageAnswer(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App& command = NamedCommand(app);
  const std::vector<std::string> unknown = app.remaining(true);
  const bool isAboutValue = dynamic_cast<const CLI::ValidationError*>(&error) != nullptr ||
                            dynamic_cast<const CLI::ConversionError*>(&error) != nullptr;
  if (!unknown.empty() && !isAboutValue)
    return AboutWord(command, unknown.front());
  const std::vector<std::string> names = CommandsOf(command);
  if (!names.empty() && dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
    return "a command is required: " + Joined(names);
  std::string sentence = error.what();
  std::replace(sentence.begin(), sentence.end(), '\n', ' ');
  return sentence;
}

} // namespace limn
