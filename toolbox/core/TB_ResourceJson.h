// Members of a resource, with a fallback where one is missing or of another kind. Private to the
// toolbox.
#pragma once

#include "MacTypes.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

// Null where there is none, and for null and what is no object.
TB_EXPORT const nlohmann::json* TB_Member(const nlohmann::json* object, std::string_view name);
TB_EXPORT std::string TB_StringMember(const nlohmann::json& object, const char* name);
TB_EXPORT bool TB_BoolMember(const nlohmann::json& object, const char* name, bool fallback);
// Cut to minimum and maximum.
TB_EXPORT int TB_IntMember(const nlohmann::json& object, const char* name, int fallback,
                           int minimum, int maximum);
// Whole numbers of a list, each cut to 32 bits; empty unless all are numbers.
TB_EXPORT std::vector<int> TB_IntsMember(const nlohmann::json& object, const char* name);
TB_EXPORT std::vector<std::string> TB_StringsMember(const nlohmann::json& object, const char* name);
