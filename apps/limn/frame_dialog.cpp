#include "frame_dialog.h"

#include "failure.h"
#include "lighting.h"

#include "LM_dialog_services.h"
#include "LM_globals.h"
#include "LM_host_services.h"
#include "LM_preview.h"
#include "LM_preview_geometry.h"
#include "LM_session.h"
#include "LM_style_settings.h"

namespace limn {
namespace {

// What the dialog's functions, having no argument for it, work on.
struct Wish {
  const LM_style* style = nullptr;
  Light light = Light::On;
  Rect previewBox = {};
  FramePicture picture;
};
Wish wish;

int16_t Construct(FilterRecord*, LM_globals* globals) {
  // Never looked into: it only says that there is a dialog.
  static char standIn;
  globals->dialog = reinterpret_cast<GrafPort*>(&standIn);
  constexpr int16_t MARGIN = (LM_FRAME_SIZE - LM_PREVIEW_AREA_SIZE) / 2;
  constexpr int16_t END = MARGIN + LM_PREVIEW_AREA_SIZE;
  wish.previewBox = {MARGIN, MARGIN, END, END};
  return CV_RESULT_OK;
}

void Dispose(LM_globals* globals) {
  globals->dialog = nullptr;
}

void KeepPicture(const CVPixelMap& map) {
  wish.picture.width = map.bounds.right - map.bounds.left;
  wish.picture.height = map.bounds.bottom - map.bounds.top;
  const ptrdiff_t rowBytes = static_cast<ptrdiff_t>(wish.picture.width) * map.columnBytes;
  for (ptrdiff_t row = 0; row < wish.picture.height; ++row) {
    const uint8_t* pixels = map.baseAddress + row * map.rowBytes;
    wish.picture.pixels.insert(wish.picture.pixels.end(), pixels, pixels + rowBytes);
  }
}

int16_t ShowStyle(FilterRecord* record, LM_globals* globals) {
  globals->Default();
  globals->InvalidateCaches();
  LM_DrawPreviewFrameToPixelMap(globals->dialog, globals);
  int16_t numChannels = 0;
  int16_t result = LM_GetNumChannels(numChannels, record);
  if (result != CV_RESULT_OK)
    return result;
  if (!LM_ApplyStyle(*wish.style, *globals))
    return CV_RESULT_STOPPED;
  globals->SetBumpChannel(LM_ChannelOrNone(globals->BumpChannel(), numChannels));
  if (globals->BumpChannel() != 0)
    result = LM_GetPreviewBumpPixelMap(globals);
  globals->previewOn = wish.light == Light::On ? 1 : 0;
  if (result == CV_RESULT_OK)
    result = LM_GeneratePreview(globals->dialog, globals);
  return result;
}

int16_t Run(FilterRecord* record, LM_globals* globals) {
  const int16_t result = ShowStyle(record, globals);
  if (result == CV_RESULT_OK)
    KeepPicture(globals->previewMaps[LM_FRAME_MAP]);
  globals->FreeCaches();
  Dispose(globals);
  return result == CV_RESULT_OK ? int16_t{CV_RESULT_STOPPED} : result;
}

Rect ItemBox(LM_globals*, int16_t item) {
  return item == LM_ITEM_WORK_AREA ? Rect{0, 0, LM_FRAME_SIZE, LM_FRAME_SIZE} : wish.previewBox;
}
void SetItemBox(LM_globals*, int16_t, const Rect& box) {
  wish.previewBox = box;
}
void RedrawItem(LM_globals*, int16_t) {}
void ShowCursor() {}

constexpr LM_dialog_services SERVICES = {Construct,  Run,        Dispose,    ItemBox,
                                         SetItemBox, RedrawItem, ShowCursor, ShowCursor};

int Entry(int selector, void* record, intptr_t* data, int16_t* result) {
  LM_AnswerCall(static_cast<int16_t>(static_cast<uint16_t>(selector)), record, data, result);
  return 0;
}

} // namespace

FramePicture DrawFrame(CVDocument& document, CVRect area, const LM_style& style, Light light,
                       const std::string& file) {
  wish = {};
  wish.style = &style;
  wish.light = light;
  LM_SetDialogServices(&SERVICES);
  CVFilterSession session(CVPlugin(Entry, "limn"));
  CVRunOptions options;
  options.dialog = CVDialog::Yes;
  const CVResult result = session.run(document, area, options);
  LM_SetDialogServices(nullptr);
  if (wish.picture.pixels.empty())
    CheckRun(result, file);
  if (wish.picture.pixels.empty())
    throw Failure(ExitCode::Refused, file + ": the preview could not be drawn");
  return std::move(wish.picture);
}

} // namespace limn
