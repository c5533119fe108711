// What runs of the plug-in on photographs have in common.
#pragma once

#include "image_file.h"

#include "LM_style.h"
#include "limn.h"

#include <CVFilterSession.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct foo; // the shading parameter block

namespace limn {

// Parses whole pixels, separated by commas; form: as in "X,Y". Throws Failure(WrongUsage).
void ParsePixels(const std::string& option, const std::string& text, const char* form,
                 std::span<int> numbers);
// "X,Y,W,H" in whole pixels; none for an empty text. Throws Failure(WrongUsage).
std::optional<limn_area> ParseArea(const std::string& text);

// What to do to a photograph beside the style. Shared by all images of a batch.
struct Surroundings {
  std::optional<limn_area> area;   // none: the whole image
  std::optional<GreyImage> mask;   // none: everything is selected
  std::vector<GreyImage> channels; // appended to the image's own
  std::optional<GreyImage> relief; // heights from a file, which are no channel
};

// With the pixels of these files; mask: empty for none. Throws Failure.
Surroundings ReadSurroundings(const std::optional<limn_area>& area, const std::string& mask,
                              const std::vector<std::string>& channels);

// Where this program lies. Throws Failure(Refused).
std::filesystem::path ProgramFolder();

// The plug-in's module: $LIMN_PLUGIN, or the one that was installed or built together with the
// program. Throws Failure(Refused) when it cannot be loaded.
CVPlugin LoadPlugin();

// Adds a notice when the grey image has to be scaled to a photograph of that size.
void NoteScaling(const GreyImage& grey, int width, int height, std::vector<std::string>& notices);
// The photograph as the editor's document, with mask and channels. It borrows all pixels; channels
// are made its size. Throws Failure when mask or channels do not fit.
CVDocument MakeDocument(Surroundings& surroundings, Photograph& photograph,
                        const std::string& file);
// The rectangle to filter. Throws Failure(WrongUsage) when it is not inside the image.
CVRect AreaOf(const Surroundings& surroundings, int width, int height, const std::string& file);
// The plug-in's parameters for such a document. Throws Failure(WrongUsage) when the style holds no
// light.
std::unique_ptr<foo> MakeParameters(const LM_style& style, CVRect area, int numChannels,
                                    const std::string& file);
// Adds channels and mask, whose pixels are borrowed. Throws Failure when they do not fit.
void AddSurroundings(CVDocument& document, Surroundings& surroundings, const std::string& file);
// Throws what a run's result means as a Failure about `file`.
void CheckRun(const CVResult& result, const std::string& file);
// Adds a notice when the style's relief channel is not one of the document's.
void NoteMissingRelief(const LM_style& style, int numChannels, std::vector<std::string>& notices);
// Throws Failure when area, mask or channels do not fit an image of that size.
void CheckSurroundings(const Surroundings& surroundings, int width, int height,
                       const std::string& file);

// The name of a channel that an image file becomes: the file's own without folder and extension.
std::string ChannelName(const std::string& file);

} // namespace limn
