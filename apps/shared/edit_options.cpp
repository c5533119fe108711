#include "edit_options.h"

#include "max_pixels_option.h"

namespace limn {

std::shared_ptr<EditOptions> AddEditOptions(CLI::App& command) {
  auto options = std::make_shared<EditOptions>();
  command.add_option("IMAGE", options->image, "The photograph to light")->required();
  command
      .add_option("-o,--output", options->output,
                  "The file to write when OK is pressed, in the format\n"
                  "of its extension, with libvips' save options in\n"
                  "brackets (lit.jpg[Q=92]); or - for standard output.\n"
                  "Default: beside the photograph, photo-lit.jpg for\n"
                  "photo.jpg")
      ->type_name("FILE");
  command.add_option("--area", options->area, "Light only this rectangle, in pixels")
      ->type_name("X,Y,W,H");
  command
      .add_option("--mask", options->mask,
                  "A grey image of the same size: light fully where it is\n"
                  "white, not at all where it is black")
      ->type_name("IMAGE");
  command
      .add_option("--channel", options->channels,
                  "A grey image of the same size, as one more channel\n"
                  "that relief can be taken from; may be repeated")
      ->type_name("IMAGE")
      ->allow_extra_args(false);
  command
      .add_option("-s,--style", options->style,
                  "The lights to begin with: a style file, its JSON form,\n"
                  "the JSON itself, or the name of a style")
      ->type_name("NAME|FILE");
  command.add_flag("--print-command", options->printCommand,
                   "Print the limn apply command that makes the same file\n"
                   "again, byte for byte");
  AddMaxPixels(command, options->maxPixels);
  command.add_flag("-f,--force", options->force,
                   "Replace an existing file, the input too if so named");
  command.add_flag("-q,--quiet", options->quiet, "Print nothing but failures");
  return options;
}

} // namespace limn
