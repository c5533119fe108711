#include "further_images.h"

#include <algorithm>
#include <expat.h>
#include <memory>
#include <new>
#include <vector>

namespace limn {
namespace {

constexpr std::string_view GAIN_MAP = "http://ns.adobe.com/hdr-gain-map/1.0/";
// The directory of the file's images, and their entries: "…container/item/".
constexpr std::string_view DIRECTORY = "http://ns.google.com/photos/1.0/container/";

// Between the parts of an expanded name: namespace, name, prefix.
constexpr char SEPARATOR = '\n';

bool IsTheirs(std::string_view uri) {
  return uri.starts_with(GAIN_MAP) || uri.starts_with(DIRECTORY);
}

// "prefix:name" of an expanded name.
std::string WrittenName(std::string_view expanded) {
  const size_t name = expanded.find(SEPARATOR);
  const size_t prefix = expanded.find(SEPARATOR, name + 1);
  if (name == std::string_view::npos || prefix == std::string_view::npos)
    return std::string(expanded);
  return std::string(expanded.substr(prefix + 1)) + ":" +
         std::string(expanded.substr(name + 1, prefix - name - 1));
}

// Walks over a packet and notes the bytes that are to go.
class Walk {
public:
  explicit Walk(std::string_view packet)
      : _packet(packet), _parser(XML_ParserCreateNS(nullptr, SEPARATOR), XML_ParserFree) {
    if (_parser == nullptr)
      throw std::bad_alloc();
    XML_SetUserData(_parser.get(), this);
    XML_SetReturnNSTriplet(_parser.get(), 1);
    XML_SetNamespaceDeclHandler(_parser.get(), _DeclarePrefix, nullptr);
    XML_SetElementHandler(_parser.get(), _Start, _End);
    XML_SetStartDoctypeDeclHandler(_parser.get(), _RefuseDoctype);
  }

  // What is left of it; empty when it is not XML as packets are.
  std::string Rest() {
    XML_Parse(_parser.get(), _packet.data(), static_cast<int>(_packet.size()), XML_TRUE);
    if (!_isWhole) // what follows the element is padding
      return {};
    std::string rest;
    size_t at = 0;
    for (const auto& [start, end] : _cuts) {
      rest += _packet.substr(at, start - at);
      at = end;
    }
    return rest += _packet.substr(at);
  }

private:
  static void XMLCALL _RefuseDoctype(void* walk, const char*, const char*, const char*, int) {
    XML_StopParser(static_cast<Walk*>(walk)->_parser.get(), XML_FALSE);
  }

  // Comes before the element that declares it.
  static void XMLCALL _DeclarePrefix(void* walk, const char* prefix, const char* uri) {
    if (prefix != nullptr && uri != nullptr && IsTheirs(uri))
      static_cast<Walk*>(walk)->_attributes.push_back(std::string("xmlns:") + prefix);
  }

  static void XMLCALL _Start(void* user, const char* name, const char** attributes) {
    Walk& walk = *static_cast<Walk*>(user);
    ++walk._depth;
    if (walk._cutDepth == 0 && IsTheirs(name)) {
      walk._cutDepth = walk._depth;
      walk._cutStart = walk._Place();
    }
    if (walk._cutDepth == 0) {
      for (; *attributes != nullptr; attributes += 2)
        if (IsTheirs(*attributes))
          walk._attributes.push_back(WrittenName(*attributes));
      walk._CutAttributes();
    }
    walk._attributes.clear();
  }

  static void XMLCALL _End(void* user, const char*) {
    Walk& walk = *static_cast<Walk*>(user);
    if (walk._cutDepth == walk._depth) {
      walk._cuts.emplace_back(walk._cutStart, walk._Place() + walk._Length());
      walk._cutDepth = 0;
    }
    walk._isWhole = --walk._depth == 0;
  }

  size_t _Place() const {
    return std::clamp<int64_t>(XML_GetCurrentByteIndex(_parser.get()), 0,
                               static_cast<int64_t>(_packet.size()));
  }
  size_t _Length() const { return static_cast<size_t>(XML_GetCurrentByteCount(_parser.get())); }

  // Notes those attributes of the tag at hand, each with the space in front of it. The tag is known
  // to be well formed.
  void _CutAttributes() {
    constexpr const char* SPACE = " \t\r\n";
    if (_attributes.empty())
      return;
    const size_t tagEnd = std::min(_Place() + _Length(), _packet.size());
    size_t at = _packet.find_first_of(SPACE, _Place());
    while (at < tagEnd) {
      const size_t start = at;
      const size_t name = _packet.find_first_not_of(SPACE, at);
      const size_t quote = _packet.find_first_of("\"'", std::min(name, tagEnd));
      if (quote >= tagEnd)
        return;
      at = _packet.find(_packet[quote], quote + 1);
      if (at >= tagEnd)
        return;
      ++at;
      const std::string_view written =
          _packet.substr(name, _packet.find_first_of(" \t\r\n=", name) - name);
      if (std::find(_attributes.begin(), _attributes.end(), written) != _attributes.end())
        _cuts.emplace_back(start, at);
    }
  }

  std::string_view _packet;
  std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> _parser;
  std::vector<std::string> _attributes;         // that the next tag is to lose
  std::vector<std::pair<size_t, size_t>> _cuts; // in order; from, to
  int _depth = 0;
  int _cutDepth = 0; // of the element that goes, or 0
  size_t _cutStart = 0;
  bool _isWhole = false;
};

} // namespace

std::optional<TrimmedXmp> WithoutFurtherImages(std::string_view packet) {
  const bool hasGainMap = packet.find(GAIN_MAP) != std::string_view::npos;
  if (!hasGainMap && packet.find(DIRECTORY) == std::string_view::npos)
    return std::nullopt;
  return TrimmedXmp{
      Walk(packet).Rest(),
      hasGainMap ? "its gain map and the tags for it are left out, so it is no HDR picture "
                   "any more"
                 : "further images or films in its file are left out, and the tags for them"};
}

} // namespace limn
