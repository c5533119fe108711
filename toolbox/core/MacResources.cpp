#include "MacResources.h"

#include "MacStrings.h"
#include "TB_Locked.h"
#include "TB_ResourceJson.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

namespace {

using nlohmann::json;

constexpr std::string_view ENGLISH = "en";

// Takes a value's children apart one by one: its own destructor allocates to do so, and ends the
// program where it cannot.
void Empty(json* value) {
  if (value->is_structured()) {
    for (json& child : *value)
      Empty(&child);
    value->clear();
  }
}

// A value that can be released when memory has run out. Nothing here throws: what the JSON library
// may throw is about values of other types.
// NOLINTBEGIN(bugprone-exception-escape)
struct Document {
  Document() = default;
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  ~Document() { Empty(&value); }
  json value;
};
// NOLINTEND(bugprone-exception-escape)

struct State {
  std::mutex mutex;
  // What was handed in, to recognise it when it is handed in again.
  std::set<std::pair<const TB_EmbeddedFile*, size_t>> sources;
  std::map<std::string, std::string, std::less<>> files;  // all but the resource files, by path
  std::map<std::string, Document, std::less<>> languages; // type -> number -> resource
  std::string chosen; // by TB_SetLanguage; empty: by the environment
  // English with the language in use laid over it; must be made anew when empty.
  std::unique_ptr<const Document> merged;
};

// The number of a numbered element of a list, or null.
const json* NumberOf(const json& element) {
  const json* number = TB_Member(&element, "number");
  return number && number->is_number_integer() ? number : nullptr;
}

// The element of a list that one of an overlying list goes over: that of the same number, else
// that of the same place. May lie beyond the end.
size_t PlaceOf(const json& list, const json& over, size_t place) {
  if (const json* number = NumberOf(over)) {
    for (size_t i = 0; i < list.size(); ++i) {
      const json* other = NumberOf(list[i]);
      if (other && *other == *number)
        return i;
    }
    return list.size();
  }
  return place;
}

// Lays one value over another: objects member by member, lists element by element; null changes
// nothing. Copies no more than a single value or a text at once, for Document's sake.
void LayOver(json* base, const json& over) {
  const bool isCopy = over.is_structured() && over.type() != base->type();
  if (isCopy) {
    Empty(base);
    *base = json(over.type());
  }
  if (over.is_object() && base->is_object()) {
    for (const auto& [key, value] : over.items())
      LayOver(&(*base)[key], value);
  } else if (over.is_array() && base->is_array()) {
    for (size_t i = 0; i < over.size(); ++i)
      LayOver(&(*base)[isCopy ? i : PlaceOf(*base, over[i], i)], over[i]);
  } else if (!over.is_null()) {
    Empty(base);
    *base = over;
  }
}

bool IsNumber(std::string_view text) {
  int16_t number = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

// "de/anything.json" or "de_AT/anything.json".
bool IsInLanguage(std::string_view path) {
  const std::string_view folder = path.substr(0, path.find('/'));
  auto within = [&](size_t from, char first, char last) {
    return std::all_of(folder.begin() + from, folder.begin() + from + 2,
                       [=](char c) { return c >= first && c <= last; });
  };
  const bool general = folder.size() == 2 && within(0, 'a', 'z');
  const bool regional =
      folder.size() == 5 && within(0, 'a', 'z') && folder[2] == '_' && within(3, 'A', 'Z');
  return (general || regional) && path.find('/', folder.size() + 1) == std::string_view::npos;
}

bool IsResourceFile(const json& content) {
  if (!content.is_object())
    return false;
  for (const auto& [type, resources] : content.items()) {
    if (type.size() != 4 || !resources.is_object())
      return false;
    for (const auto& entry : resources.items())
      if (!IsNumber(entry.key()))
        return false;
  }
  return true;
}

// Makes an object of null. Left to operator[], that would end half made when memory runs out.
void NeedObject(json* value) {
  if (value->is_null())
    *value = json::object();
}

bool AddFile(State* state, std::string_view path, std::string_view bytes) {
  if (!IsInLanguage(path) || !path.ends_with(".json")) {
    state->files.insert_or_assign(std::string(path), std::string(bytes));
    return true;
  }
  Document content;
  nlohmann::detail::json_sax_dom_parser<json> builder(content.value, false);
  if (!json::sax_parse(bytes, &builder) || !IsResourceFile(content.value))
    return false;
  json* language = &state->languages[std::string(path.substr(0, path.find('/')))].value;
  NeedObject(language);
  for (auto type = content.value.begin(); type != content.value.end(); ++type) {
    json* known = &(*language)[type.key()];
    NeedObject(known);
    for (auto resource = type->begin(); resource != type->end(); ++resource) {
      json* place = &(*known)[resource.key()];
      Empty(place);
      *place = std::move(*resource);
    }
  }
  return true;
}

std::string LocaleOfEnvironment() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value && *value)
      return value;
  }
  return {};
}

// The best language there are files for: "de_AT", "de", else English. The lock is held.
std::string ChooseLanguage(const State& state) {
  std::string wanted = state.chosen.empty() ? LocaleOfEnvironment() : state.chosen;
  wanted.resize(std::min(wanted.size(), wanted.find_first_of(".@")));
  std::replace(wanted.begin(), wanted.end(), '-', '_');
  const std::string general = wanted.substr(0, wanted.find('_'));
  for (const std::string& language : {wanted, general})
    if (state.languages.contains(language))
      return language;
  return std::string(ENGLISH);
}

// All resources in the language in use. The lock is held.
const json& Merged(State* state) {
  if (!state->merged) {
    auto merged = std::make_unique<Document>();
    for (const std::string& language : {std::string(ENGLISH), ChooseLanguage(*state)}) {
      auto found = state->languages.find(language);
      if (found != state->languages.end())
        LayOver(&merged->value, found->second.value);
    }
    state->merged = std::move(merged);
  }
  return state->merged->value;
}

const json* Find(State* state, std::string_view type, int16_t number) {
  return TB_Member(TB_Member(&Merged(state), type), std::to_string(number));
}

} // namespace

void GetIndString(StringPtr dest, int16_t listID, int16_t index) {
  const TB_Locked<State> state;
  const json* list = Find(state, "STR#", listID);
  dest[0] = 0;
  if (list && list->is_array() && index >= 1 && static_cast<size_t>(index) <= list->size()) {
    const json& item = (*list)[static_cast<size_t>(index) - 1];
    if (item.is_string())
      PLstrcpy(dest, TB_PString(item.get_ref<const std::string&>()));
  }
}

Boolean TB_UseResources(const TB_EmbeddedFile* files, size_t count) {
  const TB_Locked<State> state;
  if (state->sources.contains({files, count}))
    return 1;
  state->merged.reset();
  bool allUsed = true;
  for (size_t i = 0; i < count; ++i) {
    const std::string_view bytes(reinterpret_cast<const char*>(files[i].bytes), files[i].size);
    allUsed = AddFile(state, files[i].path, bytes) && allUsed;
  }
  // Noted at the end: what ran out of memory on the way is tried again.
  state->sources.emplace(files, count);
  return allUsed;
}

void TB_ForgetResources() {
  const TB_Locked<State> state;
  state->sources.clear();
  state->files.clear();
  state->languages.clear();
  state->merged.reset();
}

void TB_SetLanguage(std::string_view code) {
  const TB_Locked<State> state;
  state->chosen = code;
  state->merged.reset();
}

const json* TB_Resource(std::string_view type, int16_t number) {
  const TB_Locked<State> state;
  return Find(state, type, number);
}

std::string_view TB_ResourceFile(std::string_view path) {
  const TB_Locked<State> state;
  for (const std::string& folder :
       {ChooseLanguage(*state) + "/", std::string(ENGLISH) + "/", std::string()}) {
    auto found = state->files.find(folder + std::string(path));
    if (found != state->files.end())
      return found->second;
  }
  return {};
}
