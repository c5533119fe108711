#include "command_line.h"

#include "option_value.h"
#include "sheet.h"

namespace limn {

void AddSheet(CLI::App& app, Command& command) {
  auto [sheet, options] = AddCommand(
      app, command, "sheet", "Show all styles on a photograph, on one labelled page", WriteSheet);
  sheet.footer("The first picture is the photograph as it is. The name below a picture is the\n"
               "one to give limn apply --style.\n\n"
               "  limn sheet photo.jpg -o sheet.png\n"
               "  limn sheet photo.jpg --relief auto --detail -o sheet.png\n"
               "  limn sheet -s Campfire -s 'Golden Hour' --size 600 photo.jpg -o two.png\n\n" +
               std::string(EXIT_CODES));
  sheet.add_option("IMAGE", options.image, "The photograph")->required();
  AddValue(sheet, "-o,--output", options.output, "FILE", "The file to write, as for limn apply")
      ->required();
  AddValue(
      sheet, "-s,--style", options.styles, "NAME|FILE",
      "A style file, its JSON form, the JSON itself, or the\nname of a style; may be repeated\n"
      "(default: all of the library)");
  AddValue(sheet, "--columns", options.columns, "N",
           "Pictures side by side (default: by their shape)")
      ->check(CLI::Range(1, 100));
  AddValue(sheet, "--size", options.size, "PX",
           "The longer side of a picture, in pixels\n(default: 240)")
      ->check(CLI::Range(48, 2048));
  sheet.add_flag("--detail", options.isDetailed,
                 "Add a piece from the photograph's middle to each\npicture, pixel for pixel");
  AddValue(sheet, "--detail-at", options.detailAt, "X,Y",
           "The same, with the piece around that pixel");
  AddReliefOptions(sheet, options.relief, "the style's");
  AddValue(sheet, "--channel", options.channels, "IMAGE", "As for limn apply; may be repeated");
  AddMaxPixels(sheet, options.maxPixels);
  sheet.add_flag("-f,--force", options.force, "Replace an existing file");
  sheet.add_flag("-q,--quiet", options.quiet, "Print nothing but failures");
  sheet.add_flag("--json", options.json,
                 "Print a line of JSON: input, output, size, styles,\nseconds, and detail: its x, "
                 "y, width and height");
}

} // namespace limn
