#include "edit_options.h"

#include "option_value.h"

namespace limn {

std::shared_ptr<EditOptions> AddEditOptions(CLI::App& command) {
  auto options = std::make_shared<EditOptions>();
  command.add_option("IMAGE", options->image, "The photograph to light")->required();
  AddValue(command, "-o,--output", options->output, "FILE",
           "The file to write when OK is pressed, in the format\n"
           "of its extension, with libvips' save options in\n"
           "brackets (lit.jpg[Q=92]); or - for standard output.\n"
           "Default: beside the photograph, photo-lit.jpg for\n"
           "photo.jpg");
  AddValue(command, "--area", options->area, "X,Y,W,H", "Light only this rectangle, in pixels");
  AddValue(command, "--mask", options->mask, "IMAGE",
           "A grey image of the same size: light fully where it is\n"
           "white, not at all where it is black");
  AddValue(command, "--channel", options->channels, "IMAGE",
           "A grey image of the same size, as one more channel\n"
           "that relief can be taken from; may be repeated");
  AddValue(command, "-s,--style", options->style, "NAME|FILE",
           "The lights to begin with: a style file, its JSON form,\n"
           "the JSON itself, or the name of a style");
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
