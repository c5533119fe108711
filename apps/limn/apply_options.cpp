#include "command_line.h"

#include "apply.h"
#include "option_value.h"

#include "LM_light_kinds.h"
#include "LM_style_fields.h"

#include <memory>
#include <vector>

namespace limn {
namespace {

// Folds words into lines that fit a narrow terminal.
std::string Folded(const std::vector<std::string>& words) {
  constexpr size_t LONGEST_LINE = 76;
  std::string text = "  ";
  size_t length = 0;
  for (const std::string& word : words) {
    const bool isNewLine = length + word.size() > LONGEST_LINE;
    if (length > 0)
      text += isNewLine ? ",\n  " : ", ";
    text += word;
    length = (isNewLine ? 0 : length) + word.size() + 2;
  }
  return text;
}

std::string ApplyNotes() {
  std::vector<std::string> keys;
  for (const LM_style_key& key : LM_StyleKeys())
    keys.push_back(key.word.empty() ? key.name : key.word + " (or " + key.name + ")");
  return "Settings for --set, N being a light's number from 0:\n" + Folded(keys) +
         "\nA light's type is " + LM_LightKindWords(&LM_light_kind::word) + " (or " +
         LM_LightKindWords(&LM_light_kind::plainWord) +
         "). Colours\n"
         "are names or numbers, centre and handles two numbers, right and down:\n"
         "  --set light.0.colour=orange\n"
         "  --set light.0.colour=#ffa500\n"
         "  --set light.0.colour=255,165,0/255\n"
         "  --set light.0.colour=65535,42405,0\n"
         "  --set light.0.centre=-60,-30\n"
         "\n"
         "Examples:\n"
         "  limn apply photo.jpg -o lit.jpg\n"
         "  limn apply -s 'Evening Lamp' --set exposure=150 photo.jpg -o 'lit.jpg[Q=92]'\n"
         "  limn apply -s 'Carved in Stone' --relief auto photo.jpg -o lit.jpg\n"
         "  limn apply -s 'Raking Light' --relief heights.png photo.jpg -o lit.png\n"
         "  limn apply --update -s style.json -r holiday -o lit/\n"
         "  limn apply -s Campfire -s Clay *.jpg -o 'lit/{name}-{style}.{ext}'\n"
         "  limn apply -r holiday -o lit/ --skip-existing --json\n"
         "  fetch photo.jpg | limn apply - -o -.jpg | store lit.jpg\n\n";
}

constexpr const char* MANY_IMAGES =
    "Many images: names in a --from-file list keep their folders below the output, if\n"
    "they are relative. In a pattern {name} is an image's name without extension,\n"
    "with its folders in a tree or a list, {style} the style's, and {ext} the\n"
    "extension. --shard I/N takes the I-th of N parts, by a hash of the outputs'\n"
    "names below the output folder: N runs with the same images do them all, each\n"
    "once, wherever they run and whatever is already written.\n\n";

void AddInputs(CLI::App& apply, ApplyOptions& options) {
  apply.add_option("IMAGE", options.images,
                   "Photographs to light, or folders with -r;\n- for standard input");
  AddValue(apply, "--from-file", options.listFile, "LIST|-",
           "A file with more names of photographs, one a line;\n"
           "- for standard input");
  apply.add_flag("-0,--null", options.isListNul, "Names in the list end in a NUL byte");
  apply.add_flag("-r,--recursive", options.isRecursive,
                 "Light all images in the folders and keep their tree");
  AddValue(apply, "--shard", options.shard, "I/N",
           "Light only part I of N, I from 1 to N; see below");
}

void AddOutput(CLI::App& apply, ApplyOptions& options) {
  AddValue(apply, "-o,--output", options.output, "FILE|FOLDER/",
           "The file to write, in the format of its extension, with\n"
           "libvips' save options in brackets (lit.jpg[Q=92]); for\n"
           "several images a folder, ending in a slash, or a pattern\n"
           "(lit/{name}-{style}.{ext}); or -, as in -.jpg, for\n"
           "standard output")
      ->required();
  AddValue(apply, "--format", options.format, "EXT",
           "Write in this format: an extension, with save options\n"
           "(jpg[Q=92]). For folders, patterns and standard output");
  CLI::Option* const force = apply.add_flag("-f,--force", options.force,
                                            "Replace existing files, the inputs too if so named");
  CLI::Option* const skip = apply.add_flag("--skip-existing", options.isSkippingExisting,
                                           "Leave out images whose output is there already: goes\n"
                                           "on with a batch that was stopped");
  skip->excludes(force);
  apply.add_flag("--recipe", options.isWritingRecipe,
                 "Write how each image was lit into its XMP, for\n"
                 "limn verify, --update and --style LIT.jpg");
  apply
      .add_flag("--update", options.isUpdating,
                "Leave out images whose output was made with this very\n"
                "recipe and is younger than they are, and replace the\n"
                "others' outputs; writes recipes")
      ->excludes(force)
      ->excludes(skip);
  apply.add_flag("--dry-run", options.isDryRun,
                 "Print what would be written and what refused, going by\n"
                 "the images' headers, and write nothing");
}

void AddLighting(CLI::App& apply, ApplyOptions& options) {
  AddValue(apply, "-s,--style", options.styles, "NAME|FILE",
           "A style file, its JSON form, the JSON itself, a picture\nlit with --recipe, or the "
           "name of a style (default:\n"
           "Default); may be repeated: each image in each style");
  AddValue(apply, "--set", options.settings, "KEY=VALUE",
           "Change one setting of the style; may be repeated");
  AddValue(apply, "--depth", options.depth, "8|16|float",
           "Light and write so many bits a channel (default: those\n"
           "of the image, or as many as the output's format holds);\n"
           "8 is what the dialog does, with height maps too")
      ->check(CLI::IsMember({"8", "16", "float"}));
  AddValue(apply, "--area", options.area, "X,Y,W,H", "Light only this rectangle, in pixels");
  AddValue(apply, "--mask", options.mask, "IMAGE",
           "A grey image of the same size and of any depth: light\n"
           "fully where it is white, not at all where it is black");
  AddValue(apply, "--channel", options.channels, "IMAGE",
           "A grey image of the same shape, as one more channel that\n"
           "a style can take its relief from, with all its depth;\n"
           "not written to the output; may be repeated");
  AddReliefOptions(apply, options.relief, "the style's");
}

void AddRunning(CLI::App& apply, ApplyOptions& options) {
  AddValue(apply, "-j,--jobs", options.jobs, "N",
           "Images to work on at a time\n(default: processors)")
      ->check(CLI::Range(1, 256));
  AddMaxPixels(apply, options.maxPixels);
  AddValue(apply, "--max-seconds", options.maxSeconds, "N",
           "Give an image up that takes longer, which may be made\nto take for ever "
           "(default: no limit)")
      ->check(CLI::Range(1, 1000000));
  apply.add_flag("--through-plugin", options.isThroughPlugin,
                 "Have the plug-in light the whole image in memory, as the\neditor does, in 8 "
                 "bits; of those the result is the same");
  apply.add_flag("-q,--quiet", options.quiet, "Print nothing but failures");
  apply.add_flag("--json", options.json,
                 "Print a line of JSON for each image: input, output,\nsize, seconds");
}

} // namespace

void AddApply(CLI::App& app, Command& command) {
  auto options = std::make_shared<ApplyOptions>();
  CLI::App* apply = app.add_subcommand("apply", "Light photographs and write the results");
  apply->footer(ApplyNotes() + MANY_IMAGES + EXIT_CODES);
  AddInputs(*apply, *options);
  AddOutput(*apply, *options);
  AddLighting(*apply, *options);
  AddRunning(*apply, *options);
  apply->callback([options, &command] {
    if (options->images.empty() && options->listFile.empty())
      throw CLI::RequiredError("IMAGE or --from-file");
    command = [options] { return Apply(*options); };
  });
}

} // namespace limn
