#include "format_limits.h"

#include <algorithm>
#include <vector>

namespace limn {
namespace {

constexpr size_t MOST_REFERENCES = 65'536; // a grid of the most rows and columns

struct Box {
  uint64_t type;
  int64_t content;
  int64_t end;
};

// The box at `at`, which is cut at `limit`. Where there is room for none, or its length says less
// than its head takes: one of no type, to the limit.
Box BoxAt(FileBytes& bytes, int64_t at, int64_t limit) {
  Box box{bytes.Number(at + 4, 4), at + 8, limit};
  uint64_t length = bytes.Number(at, 4);
  if (length == 1) {
    length = bytes.Number(box.content, 8);
    box.content += 8;
  } else if (length == 0) { // to the limit
    length = static_cast<uint64_t>(limit - at);
  }
  if (box.content > limit || length < static_cast<uint64_t>(box.content - at))
    return {0, limit, limit};
  if (length < static_cast<uint64_t>(limit - at))
    box.end = at + static_cast<int64_t>(length);
  return box;
}

template <class Visitor>
void ForEachBox(FileBytes& bytes, int64_t at, int64_t limit, const Visitor& visit) {
  while (at < limit) {
    const Box box = BoxAt(bytes, at, limit);
    visit(box);
    at = box.end;
  }
}

// What is made of what, out of all the file's boxes.
class HeifItems {
public:
  explicit HeifItems(FileBytes& bytes) : _bytes(bytes) {}

  void AddItem(const Box& box) {
    if (box.type != NameOf("infe"))
      return;
    const int width = _bytes.At(box.content) > 2 ? 4 : 2; // by the version
    const uint64_t type = _bytes.Number(box.content + 6 + width, 4);
    if (type == NameOf("iovl"))
      _bytes.Refuse("lays images over each other, which is not read");
    if (type == NameOf("grid") || type == NameOf("iden"))
      _made.push_back(_bytes.Number(box.content + 4, width));
  }

  void AddReferences(const Box& box, int width) {
    const int64_t first = box.content + width + 2;
    const auto count = static_cast<int64_t>(_bytes.Number(first - 2, 2));
    // The decoder goes by the count and past an identifier, and not by the box's length.
    if (box.type == NameOf("uuid") || first + count * width != box.end)
      _bytes.Refuse("holds references between images that do not fit their box");
    const bool isPart = box.type == NameOf("dimg");
    if (!isPart && box.type != NameOf("auxl"))
      return;
    for (int64_t at = first; at < box.end; at += width)
      _references.push_back({isPart, _bytes.Number(box.content, width), _bytes.Number(at, width)});
    if (_references.size() > MOST_REFERENCES)
      _bytes.Refuse("is made of more than " + std::to_string(MOST_REFERENCES) + " images");
  }

  // Throws unless every image that is made of others is made of coded ones, each of them used a
  // few times. Were those made of others in turn, or their alpha channels, each step would multiply
  // the decoder's work, and a circle would not end.
  void Check() {
    std::sort(_made.begin(), _made.end());
    std::vector<uint64_t> parts;
    for (const Reference& reference : _references)
      if (reference.isPart && _Holds(_made, reference.from))
        parts.push_back(reference.to);
    std::sort(parts.begin(), parts.end());
    for (size_t i = MOST_REPEATS; i < parts.size(); ++i)
      if (parts[i] == parts[i - MOST_REPEATS])
        _bytes.Refuse("decodes the same image again and again");
    for (const Reference& reference : _references)
      if (_Holds(_made, reference.from) && _Holds(reference.isPart ? _made : parts, reference.to))
        _bytes.Refuse("is made of images that are made of others, which is not read");
  }

private:
  struct Reference {
    bool isPart; // `from` is made of `to`, and else its alpha channel or the like
    uint64_t from, to;
  };

  static bool _Holds(const std::vector<uint64_t>& sorted, uint64_t id) {
    return std::binary_search(sorted.begin(), sorted.end(), id);
  }

  FileBytes& _bytes;
  std::vector<uint64_t> _made;
  std::vector<Reference> _references;
};

} // namespace

void CheckHeif(FileBytes& bytes) {
  // libheif 1.19 ends its process over a file that is cut within its first box.
  const uint64_t first = bytes.Number(0, 4) == 1 ? bytes.Number(8, 8) : bytes.Number(0, 4);
  if (first > static_cast<uint64_t>(bytes.Length()))
    bytes.Refuse("is cut short or damaged");
  HeifItems items(bytes);
  ForEachBox(bytes, 0, bytes.Length(), [&](const Box& box) {
    if (box.type != NameOf("meta"))
      return;
    ForEachBox(bytes, box.content + 4, box.end, [&](const Box& list) {
      const bool isWide = bytes.At(list.content) > 0; // by the version
      if (list.type == NameOf("iinf"))
        ForEachBox(bytes, list.content + (isWide ? 8 : 6), list.end,
                   [&](const Box& item) { items.AddItem(item); });
      if (list.type == NameOf("iref"))
        ForEachBox(bytes, list.content + 4, list.end,
                   [&](const Box& item) { items.AddReferences(item, isWide ? 4 : 2); });
    });
  });
  items.Check();
}

} // namespace limn
