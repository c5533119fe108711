#include "sheet_frames.h"

#include "height_image.h"
#include "image_library.h"
#include "lit_image.h"
#include "lit_photograph.h"
#include "thumbnail.h"

#include "LM_render.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>
#include <system_error>
#include <thread>

namespace limn {
namespace {

using vips::VImage;

std::vector<uint8_t> Cut(const VImage& planes, const limn_area& part) {
  return DecodedPixels(planes.extract_area(part.x, part.y, part.width, part.height)
                           .extract_band(0, VImage::option()->set("n", 3)));
}

} // namespace

SheetFrames::SheetFrames(const std::string& path, const ReducedPhotograph& photograph,
                         Surroundings& surroundings)
    : _path(path), _photograph(photograph), _surroundings(surroundings) {}

void SheetFrames::ReadDetail(const limn_area& detail) try {
  const Complaints complaints;
  const VImage planes = OpenPhotograph(_path).planes;
  const int left = std::max(0, detail.x - LM_RELIEF_REACH);
  const int top = std::max(0, detail.y - LM_RELIEF_REACH);
  const int right = std::min(planes.width(), detail.x + detail.width + LM_RELIEF_REACH);
  const int bottom = std::min(planes.height(), detail.y + detail.height + LM_RELIEF_REACH);
  _planes = planes.extract_area(left, top, right - left, bottom - top)
                .copy_memory()
                .embed(left, top, planes.width(), planes.height());
  complaints.Check(ExitCode::BadInput, _path);
  _detail = detail;
} catch (...) {
  throw CaughtLibraryFailure(ExitCode::BadInput, _path);
}

const SheetFrames::Relief* SheetFrames::_Find(const LM_height_source& source) const {
  const auto made = std::find_if(_reliefs.begin(), _reliefs.end(), [&](const Relief& relief) {
    return relief.photograph.relief == source;
  });
  return made != _reliefs.end() ? &*made : nullptr;
}

void SheetFrames::_Make(const LM_height_source& source) try {
  if (_Find(source) != nullptr)
    return;
  Relief relief{_photograph, nullptr};
  relief.photograph.relief = source;
  const bool isPlane = source.kind == LM_height_kind::Channel && LM_IsPlain(source) &&
                       source.channel <= _photograph.numPlanes;
  if (source.kind != LM_height_kind::Style && source.kind != LM_height_kind::None && !isPlane) {
    const Complaints complaints;
    relief.heights = std::make_shared<const LM_height_plane>(HeightPlane(
        source, SubjectOf(_path, _photograph.fullWidth, _photograph.fullHeight, _surroundings)));
    const std::vector<uint8_t> seen =
        DecodedPixels(ShownHeights(relief.heights, _photograph.width, _photograph.height));
    relief.photograph.heights.resize(seen.size() / sizeof(uint16_t));
    std::memcpy(relief.photograph.heights.data(), seen.data(), seen.size());
    complaints.Check(ExitCode::BadInput, _path);
  }
  _reliefs.push_back(std::move(relief));
} catch (...) {
  throw CaughtLibraryFailure(ExitCode::BadInput, _path);
}

void SheetFrames::_DrawPictures(const std::vector<SheetStyle>& styles,
                                std::vector<SheetFrame>& frames) const {
  std::atomic<size_t> next{0};
  const auto work = [&] {
    for (size_t i = next++; i < styles.size(); i = next++)
      frames[i + 1].picture = LitThumbnail(_Find(styles[i].relief)->photograph, styles[i].style);
  };
  std::vector<std::jthread> threads;
  try {
    for (unsigned i = 1; i < std::thread::hardware_concurrency(); ++i)
      threads.emplace_back(work);
  } catch (const std::system_error&) {
    // The system has no more threads to give. Fewer do it too.
  }
  work();
}

std::vector<uint8_t> SheetFrames::_LitDetail(const SheetStyle& shown) const {
  const LightingOfPhotographs light{shown.style, shown.relief, _surroundings, true};
  return Cut(LitImage(*_planes, light.Settings(_path, *_planes, _Find(shown.relief)->heights)),
             _detail);
}

std::vector<SheetFrame> SheetFrames::Draw(const std::vector<SheetStyle>& styles) {
  for (const SheetStyle& shown : styles)
    _Make(shown.relief);
  std::vector<SheetFrame> frames(styles.size() + 1);
  frames[0].picture = UnlitThumbnail(_photograph);
  _DrawPictures(styles, frames);
  for (const SheetFrame& frame : frames)
    if (frame.picture.empty())
      throw std::bad_alloc();
  if (_planes) {
    frames[0].detail = Cut(*_planes, _detail);
    for (size_t i = 0; i < styles.size(); ++i)
      frames[i + 1].detail = _LitDetail(styles[i]);
  }
  return frames;
}

} // namespace limn
