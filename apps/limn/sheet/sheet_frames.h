// What the cards of a contact sheet show: the photograph, as it is and in each style.
#pragma once

#include "image_file.h"
#include "lighting.h"
#include "reduced_photograph.h"

#include "LM_height_source.h"
#include "LM_style.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <vips/vips8>

namespace limn {

struct SheetStyle {
  std::string name;
  LM_style style;
  LM_height_source relief; // resolved
};

// Red, green and blue of a card's picture, and of its piece at full size, if there is one.
struct SheetFrame {
  std::vector<uint8_t> picture;
  std::vector<uint8_t> detail;
};

class SheetFrames {
public:
  // photograph and surroundings are borrowed; these fit the photograph. Throws Failure.
  SheetFrames(const std::string& path, const ReducedPhotograph& photograph,
              Surroundings& surroundings);

  // Reads the piece of the photograph that frames show at full size. Throws Failure.
  void ReadDetail(const limn_area& detail);

  // That of the photograph itself first. Throws Failure, vips::VError or std::bad_alloc.
  std::vector<SheetFrame> Draw(const std::vector<SheetStyle>& styles);

private:
  // The reduced photograph with one source of heights, and these at the size in which they are
  // made, where they are none of its planes.
  struct Relief {
    ReducedPhotograph photograph;
    std::shared_ptr<const LM_height_plane> heights;
  };

  const Relief* _Find(const LM_height_source& source) const;
  void _Make(const LM_height_source& source);
  void _DrawPictures(const std::vector<SheetStyle>& styles, std::vector<SheetFrame>& frames) const;
  std::vector<uint8_t> _LitDetail(const SheetStyle& shown) const;

  const std::string& _path;
  const ReducedPhotograph& _photograph;
  Surroundings& _surroundings;
  std::vector<Relief> _reliefs;
  limn_area _detail{};
  // The photograph, of which the piece and what its relief needs around it has its pixels.
  std::optional<vips::VImage> _planes;
};

} // namespace limn
