#include "TB_ResourceJson.h"

#include <algorithm>
#include <cstdint>

namespace {

// Also of numbers beyond 32 bits, and of fractions, which lose their fraction.
int64_t ToInteger(const nlohmann::json& value) {
  constexpr double LIMIT = 2147483647;
  return static_cast<int64_t>(std::clamp(value.get<double>(), -LIMIT - 1, LIMIT));
}

} // namespace

const nlohmann::json* TB_Member(const nlohmann::json* object, std::string_view name) {
  if (object == nullptr || !object->is_object())
    return nullptr;
  const auto found = object->find(name);
  return found != object->end() ? &*found : nullptr;
}

std::string TB_StringMember(const nlohmann::json& object, const char* name) {
  const nlohmann::json* member = TB_Member(&object, name);
  return member != nullptr && member->is_string() ? member->get<std::string>() : std::string();
}

bool TB_BoolMember(const nlohmann::json& object, const char* name, bool fallback) {
  const nlohmann::json* member = TB_Member(&object, name);
  return member != nullptr && member->is_boolean() ? member->get<bool>() : fallback;
}

int TB_IntMember(const nlohmann::json& object, const char* name, int fallback, int minimum,
                 int maximum) {
  const nlohmann::json* member = TB_Member(&object, name);
  if (member == nullptr || !member->is_number())
    return fallback;
  return static_cast<int>(std::clamp<int64_t>(ToInteger(*member), minimum, maximum));
}

std::vector<int> TB_IntsMember(const nlohmann::json& object, const char* name) {
  const nlohmann::json* member = TB_Member(&object, name);
  std::vector<int> values;
  if (member == nullptr || !member->is_array())
    return values;
  for (const nlohmann::json& value : *member) {
    if (!value.is_number())
      return {};
    values.push_back(static_cast<int>(ToInteger(value)));
  }
  return values;
}

std::vector<std::string> TB_StringsMember(const nlohmann::json& object, const char* name) {
  const nlohmann::json* member = TB_Member(&object, name);
  std::vector<std::string> values;
  if (member == nullptr || !member->is_array())
    return values;
  for (const nlohmann::json& value : *member)
    values.push_back(value.is_string() ? value.get<std::string>() : std::string());
  return values;
}
