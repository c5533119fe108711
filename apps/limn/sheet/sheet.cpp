#include "sheet.h"

#include "image_library.h"
#include "image_output.h"
#include "lighting.h"
#include "output_target.h"
#include "report.h"
#include "sheet_layout.h"
#include "sheet_page.h"
#include "style_source.h"
#include "thumbnail.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>
#include <thread>

namespace limn {
namespace {

constexpr PageColor PAGE = {{31, 32, 35}};
constexpr PageColor CARD = {{49, 51, 56}};
constexpr PageColor INK = {{238, 236, 231}};
constexpr PageColor PALE_INK = {{150, 152, 158}};

struct SheetStyle {
  std::string name;
  LM_style style;
};

void Note(const SheetOptions& options, const std::string& sentence) {
  if (!options.quiet)
    PrintProblem(sentence);
}

std::vector<SheetStyle> StylesOf(const SheetOptions& options) {
  std::vector<SheetStyle> styles;
  for (const std::string& name : options.styles) {
    const NamedStyle named = FindStyle(name);
    if (!named.warning.empty())
      Note(options, std::string(name).append(": ").append(named.warning));
    styles.push_back({LabelOf(name), named.style});
  }
  if (!options.styles.empty())
    return styles;
  if (const std::string& trouble = UseStyleLibrary().trouble; !trouble.empty())
    Note(options, trouble);
  for (const LM_listed_style& listed : AllStyles()) {
    if (listed.loads)
      styles.push_back({listed.name, listed.style});
    else
      Note(options, std::string(listed.name).append(": ").append(listed.why));
  }
  return styles;
}

// One notice for all styles whose relief is in a channel that there is not.
void NoteFlatStyles(const SheetOptions& options, const std::vector<SheetStyle>& styles,
                    int numPlanes) {
  std::string names;
  for (const SheetStyle& shown : styles)
    if (shown.style.bumpChannel > numPlanes)
      names += (names.empty() ? "" : ", ") + shown.name;
  if (!names.empty())
    Note(options,
         options.image + ": has no channel for the relief of " + names + "; --channel adds one");
}

// The pictures of all cards: the photograph itself, then under each style.
std::vector<std::vector<uint8_t>> DrawPictures(const ReducedPhotograph& photograph,
                                               const std::vector<SheetStyle>& styles) {
  std::vector<std::vector<uint8_t>> pictures(styles.size() + 1);
  pictures[0] = UnlitThumbnail(photograph);
  std::atomic<size_t> next{0};
  const auto work = [&] {
    for (size_t i = next++; i < styles.size(); i = next++)
      pictures[i + 1] = LitThumbnail(photograph, styles[i].style);
  };
  {
    std::vector<std::jthread> threads;
    try {
      for (unsigned i = 1; i < std::thread::hardware_concurrency(); ++i)
        threads.emplace_back(work);
    } catch (const std::system_error&) {
      // The system has no more threads to give. Fewer do it too.
    }
    work();
  }
  for (const std::vector<uint8_t>& picture : pictures)
    if (picture.empty())
      throw std::bad_alloc();
  return pictures;
}

std::string Counted(size_t number, const char* one, const char* many) {
  return std::to_string(number) + " " + (number == 1 ? one : many);
}

void DrawTitle(SheetPage& page, const SheetLayout& layout, const SheetOptions& options,
               const ReducedPhotograph& photograph, size_t numStyles) {
  Box line = {layout.margin, layout.margin * 3 / 4, layout.width - 2 * layout.margin,
              layout.titleSize + layout.margin / 2};
  const std::string facts = std::to_string(photograph.fullWidth) + " × " +
                            std::to_string(photograph.fullHeight) + " · " +
                            Counted(numStyles, "style", "styles");
  const int used =
      page.Write(line, facts, {layout.labelSize, Weight::Regular, PALE_INK}, Align::Right);
  line.width -= used + layout.gap;
  if (line.width > 0)
    page.Write(line, std::filesystem::path(options.image).filename().string(),
               {layout.titleSize, Weight::Bold, INK}, Align::Left);
}

void DrawCard(SheetPage& page, const SheetLayout& layout, int index, const std::string& name,
              const std::string& facts, const std::vector<uint8_t>& picture) {
  const Box card = CardBox(layout, index);
  page.Fill(card, CARD);
  page.Place(
      {card.x + layout.padding, card.y + layout.padding, layout.pictureWidth, layout.pictureHeight},
      picture);
  Box label = {card.x + layout.padding, card.y + layout.padding + layout.pictureHeight,
               layout.pictureWidth, layout.labelHeight};
  if (!facts.empty())
    label.width -= page.Write(label, facts, {layout.labelSize * 5 / 6, Weight::Regular, PALE_INK},
                              Align::Right) +
                   layout.padding;
  page.Write(label, name, {layout.labelSize, Weight::Regular, INK}, Align::Left);
}

Photograph DrawSheet(const SheetOptions& options, const ReadReduction& read,
                     const std::vector<SheetStyle>& styles) {
  const ReducedPhotograph& photograph = read.photograph;
  const SheetLayout layout = LayOutSheet(static_cast<int>(styles.size()) + 1, photograph.width,
                                         photograph.height, options.columns);
  if (layout.width > LIMN_LONGEST_SIDE || layout.height > LIMN_LONGEST_SIDE)
    throw Failure(ExitCode::WrongUsage,
                  options.output + ": would be " + std::to_string(layout.width) + " × " +
                      std::to_string(layout.height) + " pixels, and no side may have more than " +
                      std::to_string(LIMN_LONGEST_SIDE) + "; --size makes it smaller");
  const auto pictures = DrawPictures(photograph, styles);
  SheetPage page(layout.width, layout.height, PAGE);
  DrawTitle(page, layout, options, photograph, styles.size());
  DrawCard(page, layout, 0, "Original", "", pictures[0]);
  for (size_t i = 0; i < styles.size(); ++i)
    DrawCard(page, layout, static_cast<int>(i) + 1, styles[i].name,
             Counted(styles[i].style.lightsRead, "light", "lights"), pictures[i + 1]);
  Photograph sheet;
  sheet.width = layout.width;
  sheet.height = layout.height;
  sheet.numPlanes = 3;
  sheet.pixels = page.TakePixels();
  sheet.metadata = read.metadata;
  return sheet;
}

void Tell(const SheetOptions& options, const OutputName& output, const Photograph& sheet,
          const std::vector<SheetStyle>& styles, double seconds) {
  if (options.json) {
    nlohmann::ordered_json line = {{"input", options.image},
                                   {"output", output.path},
                                   {"size", {sheet.width, sheet.height}},
                                   {"styles", nlohmann::ordered_json::array()},
                                   {"seconds", seconds}};
    for (const SheetStyle& shown : styles)
      line["styles"].push_back(shown.name);
    PrintLine(line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
  } else if (!options.quiet && !IsStandardOutput(output.path)) {
    char figures[120];
    std::snprintf(figures, sizeof figures, " (%s, %d × %d, %.2f s)",
                  Counted(styles.size(), "style", "styles").c_str(), sheet.width, sheet.height,
                  seconds);
    PrintLine(Printable(options.image + " → " + output.path) + figures);
  }
}

} // namespace

ExitCode WriteSheet(const SheetOptions& options) {
  const auto start = std::chrono::steady_clock::now();
  const Existing existing = options.force ? Existing::Replace : Existing::Keep;
  const OutputName output = ParseOutputName(options.output);
  const std::vector<SheetStyle> styles = StylesOf(options);
  CheckTarget(options.image, output, existing);
  if (options.json && IsStandardOutput(output.path))
    throw Failure(ExitCode::WrongUsage, JSON_AND_PICTURE);
  StartImageLibrary(ALL_THREADS, {options.maxPixels, MAX_PIXELS_ADVICE});
  CheckOutputFormat(output);
  const ReadReduction read = ReadReducedPhotograph(options.image, options.channels, options.size);
  for (const std::string& notice : read.notices)
    Note(options, std::string(options.image).append(": ").append(notice));
  NoteFlatStyles(options, styles, read.photograph.numPlanes);
  try {
    Photograph sheet = DrawSheet(options, read, styles);
    WritePhotograph(sheet, output, ResolveTarget(output.path), existing);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    Tell(options, output, sheet, styles, seconds.count());
  } catch (const vips::VError&) {
    throw LibraryFailure(ExitCode::Refused, output.path);
  }
  return ExitCode::Done;
}

} // namespace limn
