#include "lit_image.h"

#include "CVMix.h"
#include "LM_floating_point.h"
#include "LM_style_lighting.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace limn {
namespace {

using vips::VImage;

constexpr int NUM_LIT = 3;

// What all threads share, read only.
struct Lighting {
  LM_render_job job;
  std::vector<VImage> images; // the lit one first, three at most
  int reliefImage = -1;       // which of them has the relief, or -1
  int reliefBand = 0;
  int maskImage = -1;
  LM_kept_sums* kept = nullptr;
  std::shared_ptr<std::atomic<bool>> hasSourceFailed;
};

// What one thread works with.
struct Worker {
  VipsRegion* regions[3] = {};
  LM_render_scratch_pointer scratch;
};

int StopWorker(void* sequence, void*, void*) {
  std::unique_ptr<Worker> worker(static_cast<Worker*>(sequence));
  for (VipsRegion*& region : worker->regions)
    VIPS_UNREF(region);
  return 0;
}

void* StartWorker(VipsImage*, void* shared, void*) {
  const Lighting& lighting = *static_cast<const Lighting*>(shared);
  auto* worker = new (std::nothrow) Worker;
  if (worker != nullptr)
    worker->scratch = LM_NewRenderScratch();
  if (worker == nullptr || worker->scratch == nullptr) {
    delete worker;
    vips_error("limn", "out of memory");
    return nullptr;
  }
  for (size_t i = 0; i < lighting.images.size(); ++i) {
    worker->regions[i] = vips_region_new(lighting.images[i].get_image());
    if (worker->regions[i] == nullptr) {
      StopWorker(worker, nullptr, nullptr);
      return nullptr;
    }
  }
  return worker;
}

LM_rect ToRect(const VipsRect& rect) {
  return {rect.top, rect.left, rect.top + rect.height, rect.left + rect.width};
}

// The part of the rectangle that is to be lit; may be empty.
LM_rect LitPart(const Lighting& lighting, const VipsRect& rect) {
  const LM_rect& area = lighting.job.area;
  const LM_rect wanted = ToRect(rect);
  return {std::max(wanted.top, area.top), std::max(wanted.left, area.left),
          std::min(wanted.bottom, area.bottom), std::min(wanted.right, area.right)};
}

// What is needed of image `number` for the rectangle.
VipsRect NeededOf(const Lighting& lighting, int number, const VipsRect& rect) {
  if (number != lighting.reliefImage)
    return rect;
  VipsRect needed = rect;
  vips_rect_marginadjust(&needed, LM_RELIEF_REACH);
  const VipsRect all = {0, 0, lighting.job.imageWidth, lighting.job.imageHeight};
  vips_rect_intersectrect(&needed, &all, &needed);
  return needed;
}

template <class Byte> LM_view<Byte> ViewOf(VipsRegion* region, int band) {
  const auto size = static_cast<ptrdiff_t>(VIPS_IMAGE_SIZEOF_ELEMENT(region->im));
  return {VIPS_REGION_ADDR(region, region->valid.left, region->valid.top) + band * size,
          static_cast<ptrdiff_t>(VIPS_REGION_LSKIP(region)), region->im->Bands * size,
          ToRect(region->valid)};
}

// Bytes mix as the host mixes them; what is deeper without rounding to them.
uint8_t MixOne(uint8_t before, uint8_t lit, uint8_t selected) {
  return CVMixSelected(before, lit, selected);
}
uint16_t MixOne(uint16_t before, uint16_t lit, uint8_t selected) {
  return static_cast<uint16_t>((before * (255 - selected) + lit * selected + 127) / 255);
}
float MixOne(float before, float lit, uint8_t selected) {
  return selected == 0     ? before
         : selected == 255 ? lit
                           : before + (lit - before) * (static_cast<float>(selected) / 255.0F);
}

template <class Component>
void Mix(const Worker& worker, int maskImage, VipsRegion* output, const LM_rect& part) {
  const int bands = output->im->Bands;
  const auto row = [&](VipsRegion* region, int y) {
    return reinterpret_cast<Component*>(VIPS_REGION_ADDR(region, part.left, y));
  };
  for (int y = part.top; y < part.bottom; ++y) {
    const Component* before = row(worker.regions[0], y);
    const VipsPel* selected = VIPS_REGION_ADDR(worker.regions[maskImage], part.left, y);
    Component* lit = row(output, y);
    for (int x = part.left; x < part.right; ++x, before += bands, lit += bands, ++selected)
      for (int band = 0; band < NUM_LIT; ++band)
        lit[band] = MixOne(before[band], lit[band], *selected);
  }
}

std::optional<LM_pixel_kind> KindOf(VipsBandFormat format) {
  switch (format) {
  case VIPS_FORMAT_UCHAR:
    return LM_pixel_kind::Bytes;
  case VIPS_FORMAT_USHORT:
    return LM_pixel_kind::Words;
  case VIPS_FORMAT_FLOAT:
    return LM_pixel_kind::Floats;
  default:
    return std::nullopt;
  }
}

void CopyRows(VipsRegion* from, VipsRegion* into) {
  const VipsRect& rect = into->valid;
  const size_t length = VIPS_REGION_SIZEOF_LINE(into);
  for (int y = rect.top; y < rect.top + rect.height; ++y)
    std::memcpy(VIPS_REGION_ADDR(into, rect.left, y), VIPS_REGION_ADDR(from, rect.left, y), length);
}

// Has every image's pixels made that the rectangle needs, or only the lit image's.
bool Fetch(const Lighting& lighting, Worker& worker, const VipsRect& rect, bool firstOnly) {
  const int numNeeded = firstOnly ? 1 : static_cast<int>(lighting.images.size());
  for (int i = 0; i < numNeeded; ++i) {
    const VipsRect needed = NeededOf(lighting, i, rect);
    if (vips_region_prepare(worker.regions[i], &needed) == 0)
      continue;
    if (i == 0 && lighting.hasSourceFailed != nullptr)
      *lighting.hasSourceFailed = true;
    return false;
  }
  return true;
}

int Light(VipsRegion* output, void* sequence, void*, void* shared, gboolean*) {
  const Lighting& lighting = *static_cast<const Lighting*>(shared);
  Worker& worker = *static_cast<Worker*>(sequence);
  const LM_rect part = LitPart(lighting, output->valid);
  if (!Fetch(lighting, worker, output->valid, LM_IsEmpty(part)))
    return -1;
  if (LM_IsEmpty(part))
    return vips_region_region(output, worker.regions[0], &output->valid, output->valid.left,
                              output->valid.top);
  const int64_t numLit = int64_t{part.right - part.left} * (part.bottom - part.top);
  if (output->im->Bands != NUM_LIT || numLit != int64_t{output->valid.width} * output->valid.height)
    CopyRows(worker.regions[0], output);
  LM_render_views views = {};
  views.source = ViewOf<const uint8_t>(worker.regions[0], 0);
  views.output = ViewOf<uint8_t>(output, 0);
  views.kind = *KindOf(output->im->BandFmt);
  if (lighting.reliefImage >= 0) {
    VipsRegion* const relief = worker.regions[lighting.reliefImage];
    views.relief = ViewOf<const uint8_t>(relief, lighting.reliefBand);
    views.reliefKind = *KindOf(relief->im->BandFmt);
  }
  views.kept = lighting.kept;
  const LM_floating_point floatingPoint;
  const LM_render_result result = LM_RenderRect(lighting.job, views, part, *worker.scratch);
  if (result != LM_render_result::Done) {
    vips_error("limn", "%s", LM_RenderMessage(result));
    return -1;
  }
  if (lighting.maskImage >= 0 && views.kind == LM_pixel_kind::Bytes)
    Mix<uint8_t>(worker, lighting.maskImage, output, part);
  else if (lighting.maskImage >= 0 && views.kind == LM_pixel_kind::Words)
    Mix<uint16_t>(worker, lighting.maskImage, output, part);
  else if (lighting.maskImage >= 0)
    Mix<float>(worker, lighting.maskImage, output, part);
  return 0;
}

[[noreturn]] void Refuse(const char* sentence) {
  vips_error("limn", "%s", sentence);
  throw vips::VError();
}

void CheckPlane(const VImage& plane, const VImage& image, bool canBeDeep, const char* sentence) {
  if (plane.bands() != 1 || (plane.format() != VIPS_FORMAT_UCHAR && !canBeDeep) ||
      !KindOf(plane.format()) || plane.width() != image.width() || plane.height() != image.height())
    Refuse(sentence);
}

limn_area AreaOf(const VImage& image, const LitSettings& settings) {
  const limn_area area = settings.area.value_or(limn_area{0, 0, image.width(), image.height()});
  if (area.x < 0 || area.y < 0 || area.width <= 0 || area.height <= 0 ||
      area.width > image.width() - area.x || area.height > image.height() - area.y)
    Refuse("the area reaches outside the image");
  return area;
}

void Prepare(Lighting& lighting, const VImage& image, const LitSettings& settings) {
  const limn_area area = AreaOf(image, settings);
  const int numChannels = image.bands() + static_cast<int>(settings.channels.size());
  if (numChannels > LIMN_MOST_CHANNELS)
    Refuse("the image has more than 32767 channels");
  const LM_rect rect = {area.y, area.x, area.y + area.height, area.x + area.width};
  const LM_render_result prepared =
      settings.parameters ? LM_PrepareRender(*settings.parameters, rect, image.width(),
                                             image.height(), LM_BestKernels(), lighting.job)
                          : LM_PrepareStyle(settings.style, rect, image.width(), image.height(),
                                            numChannels, lighting.job);
  if (prepared == LM_render_result::NoLight)
    Refuse("the style holds no light");
  if (prepared != LM_render_result::Done)
    Refuse("out of memory");
  lighting.kept = settings.kept;
  lighting.hasSourceFailed = settings.hasSourceFailed;
  lighting.images.push_back(image);
  const int channel = LM_ChannelOrNone(lighting.job.params.bumpChannel, numChannels) - 1;
  if (channel >= image.bands()) {
    const VImage& relief = settings.channels[static_cast<size_t>(channel - image.bands())];
    CheckPlane(relief, image, true,
               "the relief is not one band of the image's size, of 8 or 16 bits or float");
    lighting.reliefImage = static_cast<int>(lighting.images.size());
    lighting.images.push_back(relief);
  } else if (channel >= 0) {
    lighting.reliefImage = 0;
    lighting.reliefBand = channel;
  }
  if (settings.mask) {
    CheckPlane(*settings.mask, image, false, "the mask is not one 8-bit band of the image's size");
    lighting.maskImage = static_cast<int>(lighting.images.size());
    lighting.images.push_back(*settings.mask);
  }
}

} // namespace

VImage LitImage(const VImage& image, const LitSettings& settings) {
  if (!KindOf(image.format()) || image.bands() < NUM_LIT ||
      vips_image_get_coding(image.get_image()) != VIPS_CODING_NONE)
    Refuse("the image does not have red, green and blue of 8 or 16 bits or float");
  if (image.width() > LIMN_LONGEST_SIDE || image.height() > LIMN_LONGEST_SIDE)
    Refuse("a side of the image has more than 32767 pixels");
  auto owned = std::make_unique<Lighting>();
  Prepare(*owned, image, settings);
  Lighting* const lighting = owned.get();
  VipsImage* const output = vips_image_new();
  VImage result(output);
  g_object_set_data_full(G_OBJECT(output), "limn-lighting", owned.release(),
                         [](void* released) { delete static_cast<Lighting*>(released); });
  VipsImage* inputs[4] = {}; // ends in a null pointer
  std::transform(lighting->images.begin(), lighting->images.end(), inputs,
                 [](const VImage& input) { return input.get_image(); });
  if (vips_image_pipeline_array(output, VIPS_DEMAND_STYLE_FATSTRIP, inputs) != 0 ||
      vips_image_generate(output, StartWorker, Light, StopWorker, lighting, lighting) != 0)
    throw vips::VError();
  return result;
}

} // namespace limn
