// The Resource Manager: texts and layouts by type and number, from files that programs carry.
//
// A program or plug-in hands in its files once. Files named LANGUAGE/anything.json, with a
// language such as "de" or "de_AT", hold resources:
//
//   { "STR#": { "141": ["Default"] },
//     "ALRT": { "16009": { "kind": "stop", "text": "…" } } }
//
// a four-character type, then a number, then the resource. "en" is complete. Another language is
// laid over it: objects member by member, lists element by element (elements with a "number" by
// that number), so that a language file holds only what differs and a missing text, or null, falls
// back to English. Other files (pictures) are found by
// their path.
#pragma once

#include "MacTypes.h"
#include "TB_EmbeddedFile.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

// Item `index` (from 1) of string list `listID`; an empty string when there is none. dest holds 256
// bytes; a longer item is cut, never within a character.
TB_EXPORT void GetIndString(StringPtr dest, int16_t listID, int16_t index);

// Adds files to those known; a second call with the same files changes nothing. The content is
// copied, so the caller may be unloaded. A file that repeats a resource wins over an earlier one.
// Answers 1, or 0 when a file is not what the format above says (the rest is still used).
TB_EXPORT Boolean TB_UseResources(const TB_EmbeddedFile* files, size_t count);
// Forgets all files, for tests.
TB_EXPORT void TB_ForgetResources();

// Chooses the language: "de", "de_AT", a whole locale name. A language without files, "C" and
// "POSIX" mean English; empty goes back to LC_ALL, LC_MESSAGES or LANG, the first that is set.
TB_EXPORT void TB_SetLanguage(std::string_view code);

// The resource, in the language in use, or null. type: four characters such as "DLOG". The pointer
// stays valid until files are added or forgotten or the language changes.
TB_EXPORT const nlohmann::json* TB_Resource(std::string_view type, int16_t number);
// The bytes of a file by its path without the language folder: the language's own, else the
// English, else the one with exactly this path. Same lifetime; an empty view when there is none.
TB_EXPORT std::string_view TB_ResourceFile(std::string_view path);
