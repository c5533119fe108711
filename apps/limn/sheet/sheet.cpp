#include "sheet.h"

#include "image_library.h"
#include "image_output.h"
#include "image_source.h"
#include "lighting.h"
#include "output_target.h"
#include "report.h"
#include "sheet_frames.h"
#include "sheet_layout.h"
#include "sheet_page.h"
#include "style_source.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>

namespace limn {
namespace {

constexpr PageColor PAGE = {{31, 32, 35}};
constexpr PageColor CARD = {{49, 51, 56}};
constexpr PageColor INK = {{238, 236, 231}};
constexpr PageColor PALE_INK = {{150, 152, 158}};

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
    styles.push_back(
        {LabelOf(name), named.style, ReliefOf(options.relief, named, options.channels)});
  }
  if (!options.styles.empty())
    return styles;
  if (const std::string& trouble = UseStyleLibrary().trouble; !trouble.empty())
    Note(options, trouble);
  for (const LM_listed_style& listed : AllStyles()) {
    if (listed.loads)
      styles.push_back({listed.name, listed.style,
                        ReliefOf(options.relief, {listed.style, ""}, options.channels)});
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
    if (shown.relief.kind == LM_height_kind::Style && shown.style.bumpChannel > numPlanes)
      names += (names.empty() ? "" : ", ") + shown.name;
  if (!names.empty())
    Note(options,
         options.image + ": has no channel for the relief of " + names + "; --channel adds one");
}

// The piece of the photograph that is shown pixel for pixel: as large as the picture, or all of it.
std::optional<limn_area> DetailOf(const SheetOptions& options,
                                  const ReducedPhotograph& photograph) {
  int at[2] = {photograph.fullWidth / 2, photograph.fullHeight / 2};
  if (!options.detailAt.empty())
    ParsePixels("--detail-at", options.detailAt, "X,Y", at);
  else if (!options.isDetailed)
    return std::nullopt;
  if (at[0] >= photograph.fullWidth || at[1] >= photograph.fullHeight)
    throw Failure(ExitCode::WrongUsage, "--detail-at " + options.detailAt + ": is not in " +
                                            ShownName(options.image) + ", which is " +
                                            std::to_string(photograph.fullWidth) + " × " +
                                            std::to_string(photograph.fullHeight) + " pixels");
  const int width = photograph.ShownWidth();
  const int height = photograph.ShownHeight();
  const auto from = [](int middle, int part, int whole) {
    return std::clamp(middle - part / 2, 0, whole - part);
  };
  return limn_area{from(at[0], width, photograph.fullWidth),
                   from(at[1], height, photograph.fullHeight), width, height};
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
                            Counted(numStyles, "style", "styles") +
                            (layout.detail.width > 0 ? " · details at 100 %" : "");
  const int used =
      page.Write(line, facts, {layout.labelSize, Weight::Regular, PALE_INK}, Align::Right);
  line.width -= used + layout.gap;
  if (line.width > 0)
    page.Write(line, std::filesystem::path(options.image).filename().string(),
               {layout.titleSize, Weight::Bold, INK}, Align::Left);
}

void DrawCard(SheetPage& page, const SheetLayout& layout, int index, const std::string& name,
              const std::string& facts, const SheetFrame& frame) {
  const Box card = OnCard(layout, layout.card, index);
  page.Fill(card, CARD);
  page.Place(OnCard(layout, layout.picture, index), frame.picture);
  page.Place(OnCard(layout, layout.detail, index), frame.detail);
  Box label = {card.x + layout.padding, card.y + card.height - layout.labelHeight,
               card.width - 2 * layout.padding, layout.labelHeight};
  if (!facts.empty())
    label.width -= page.Write(label, facts, {layout.labelSize * 5 / 6, Weight::Regular, PALE_INK},
                              Align::Right) +
                   layout.padding;
  page.Write(label, name, {layout.labelSize, Weight::Regular, INK}, Align::Left);
}

Photograph DrawSheet(const SheetOptions& options, const ReadReduction& read,
                     const std::optional<limn_area>& detail, SheetFrames& frames,
                     const std::vector<SheetStyle>& styles) {
  const ReducedPhotograph& photograph = read.photograph;
  const Extent piece = detail ? Extent{detail->width, detail->height} : Extent{0, 0};
  const SheetLayout layout =
      LayOutSheet(static_cast<int>(styles.size()) + 1,
                  {photograph.ShownWidth(), photograph.ShownHeight()}, piece, options.columns);
  if (layout.width > LIMN_LONGEST_SIDE || layout.height > LIMN_LONGEST_SIDE)
    throw Failure(ExitCode::WrongUsage,
                  options.output + ": would be " + std::to_string(layout.width) + " × " +
                      std::to_string(layout.height) + " pixels, and no side may have more than " +
                      std::to_string(LIMN_LONGEST_SIDE) + "; --size makes it smaller");
  if (detail)
    frames.ReadDetail(*detail);
  const std::vector<SheetFrame> drawn = frames.Draw(styles);
  SheetPage page(layout.width, layout.height, PAGE);
  DrawTitle(page, layout, options, photograph, styles.size());
  DrawCard(page, layout, 0, "Original", "", drawn[0]);
  for (size_t i = 0; i < styles.size(); ++i)
    DrawCard(page, layout, static_cast<int>(i) + 1, styles[i].name,
             Counted(styles[i].style.lightsRead, "light", "lights"), drawn[i + 1]);
  Photograph sheet;
  sheet.width = layout.width;
  sheet.height = layout.height;
  sheet.numPlanes = 3;
  sheet.pixels = page.TakePixels();
  sheet.metadata = read.metadata;
  return sheet;
}

void Tell(const SheetOptions& options, const OutputName& output, const Photograph& sheet,
          const std::optional<limn_area>& detail, const std::vector<SheetStyle>& styles,
          double seconds) {
  if (options.json) {
    nlohmann::ordered_json line = {{"input", options.image},
                                   {"output", output.path},
                                   {"size", {sheet.width, sheet.height}},
                                   {"styles", nlohmann::ordered_json::array()},
                                   {"seconds", seconds}};
    if (detail)
      line["detail"] = {detail->x, detail->y, detail->width, detail->height};
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
  std::vector<std::string> notices;
  Surroundings surroundings = ReadSurroundings({}, "", options.channels);
  // Only --relief names a file, and it does so for all styles.
  if (!styles.empty() && styles[0].relief.kind == LM_height_kind::File)
    surroundings.relief = ReadHeights(options.relief, styles[0].relief, notices);
  for (const std::string& notice : notices)
    Note(options, notice);
  const ReadReduction read =
      ReadReducedPhotograph(options.image, surroundings.channels, options.size);
  const ReducedPhotograph& photograph = read.photograph;
  CheckSurroundings(surroundings, photograph.fullWidth, photograph.fullHeight,
                    ShownName(options.image));
  for (const std::string& notice : read.notices)
    Note(options, std::string(options.image).append(": ").append(notice));
  NoteFlatStyles(options, styles, photograph.numPlanes);
  try {
    const std::optional<limn_area> detail = DetailOf(options, photograph);
    SheetFrames frames(options.image, photograph, surroundings);
    Photograph sheet = DrawSheet(options, read, detail, frames, styles);
    WritePhotograph(sheet, PlanesOf(sheet), output, ResolveTarget(output.path), existing);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    Tell(options, output, sheet, detail, styles, seconds.count());
  } catch (const vips::VError&) {
    throw LibraryFailure(ExitCode::Refused, output.path);
  }
  return ExitCode::Done;
}

} // namespace limn
