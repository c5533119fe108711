// Members of a resource, with a fallback where one is missing or of another kind. Private to this
// layer.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

std::string StringMember(const nlohmann::json& object, const char* name);
bool BoolMember(const nlohmann::json& object, const char* name, bool fallback);
// Cut to minimum and maximum.
int IntMember(const nlohmann::json& object, const char* name, int fallback, int minimum,
              int maximum);
// Whole numbers of a list, each cut to 32 bits; empty unless all are numbers.
std::vector<int> IntsMember(const nlohmann::json& object, const char* name);
std::vector<std::string> StringsMember(const nlohmann::json& object, const char* name);
