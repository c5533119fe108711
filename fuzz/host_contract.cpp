// A host that calls the plug-in in any order, delivers any rectangle with any stride, and answers
// its questions in any way. What it claims about its memory is true; nothing else is.
#include "FuzzInput.h"

#include "LM_dialog_services.h"
#include "LM_host_services.h"
#include "LM_preview.h"
#include "LM_session.h"
#include "LM_style_fields.h"
#include "LM_style_settings.h"
#include "MacDialogs.h"
#include "MacMemory.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr ptrdiff_t LARGEST_BUFFER = 1 << 13; // what is larger only takes longer
constexpr int MOST_STEPS = 60;
constexpr int MOST_TILES = 2000; // that the host delivers when asked, before it refuses

// Exactly the bytes that a rectangle and its stride speak of, so that a stray access is seen.
class Pixels {
public:
  // The first pixel's address, or null where a host would not deliver either.
  uint8_t* Make(const CVRect& rect, int planes, int stride, uint8_t fill) {
    const ptrdiff_t rows = rect.bottom - rect.top;
    const ptrdiff_t rowBytes = ptrdiff_t{rect.right - rect.left} * planes;
    const ptrdiff_t reach = (rows - 1) * std::abs(stride);
    _bytes.reset();
    if (rows < 1 || rowBytes < 1 || reach < 0 || rowBytes + reach > LARGEST_BUFFER)
      return nullptr;
    const auto size = static_cast<size_t>(rowBytes + reach);
    _bytes = std::make_unique<uint8_t[]>(size);
    std::memset(_bytes.get(), fill, size);
    for (size_t i = 0; i < size; i += 7)
      _bytes[i] = static_cast<uint8_t>(i * 5);
    return _bytes.get() + (stride < 0 ? reach : 0);
  }

private:
  std::unique_ptr<uint8_t[]> _bytes;
};

struct Host {
  FuzzInput* input = nullptr;
  FilterRecord record = {};
  intptr_t data = 0;
  Pixels in, out, mask;
  int16_t channels = 4;
  int untilCancel = 0;
  int tilesLeft = MOST_TILES;
};
Host* host = nullptr;
GrafPort* const FAKE_DIALOG = reinterpret_cast<GrafPort*>(&host);

CVRect AnyRect(FuzzInput& input) {
  const int16_t top = input.Number();
  const int16_t left = input.Number();
  return {top, left, static_cast<int16_t>(top + input.Below(40) - 2),
          static_cast<int16_t>(left + input.Below(40) - 2)};
}

int AnyStride(FuzzInput& input, const CVRect& rect, int planes) {
  const int row = std::abs(rect.right - rect.left) * planes;
  const int stride = input.Below(4) == 0 ? input.Byte() : row + input.Below(9);
  return input.Below(4) == 0 ? -stride : stride;
}

void Deliver() {
  FuzzInput& input = *host->input;
  FilterRecord& record = host->record;
  const int kind = input.Below(8);
  if (kind == 0)
    record.inTileRect = AnyRect(input);
  if (kind <= 1)
    record.outTileRect = AnyRect(input);
  if (kind == 2)
    record.maskTileRect = AnyRect(input);
  const int planes = std::clamp(record.inLastPlane - record.inFirstPlane + 1, 1, 4);
  record.inRowStride = AnyStride(input, record.inTileRect, planes);
  record.inPixels = host->in.Make(record.inTileRect, planes, record.inRowStride, input.Byte());
  record.outRowStride = AnyStride(input, record.outTileRect, 3);
  record.outPixels = host->out.Make(record.outTileRect, 3, record.outRowStride, 1);
  record.maskRowStride = AnyStride(input, record.maskTileRect, 1);
  record.maskPixels = host->mask.Make(record.maskTileRect, 1, record.maskRowStride, 3);
}

int16_t AnyResult() {
  static constexpr int16_t RESULTS[] = {0, 0, 0, 0, CV_RESULT_NO_SERVICE, CV_RESULT_NO_MEMORY,
                                        1, -1};
  return RESULTS[host->input->Below(8)];
}

uint8_t TestCancel() {
  return --host->untilCancel == 0 ? 1 : 0;
}
void Progress(int32_t, int32_t) {}
int16_t NextTile() {
  if (--host->tilesLeft < 0)
    return CV_RESULT_NO_MEMORY;
  Deliver();
  return AnyResult();
}
int16_t ShowPixels(const CVPixelMap* map, const CVRect32* source, int32_t, int32_t, void*) {
  unsigned sum = 0;
  for (int32_t y = source->top; y < source->bottom; ++y)
    for (int32_t x = source->left; x < source->right; ++x) {
      const ptrdiff_t row = y - map->bounds.top;
      sum += map->baseAddress[row * map->rowBytes + ptrdiff_t{x} * map->columnBytes];
      if (map->version == 1)
        sum += map->mask->maskData[row * map->mask->rowBytes + x];
    }
  return sum == 1 ? int16_t{CV_RESULT_NO_SERVICE} : AnyResult();
}
CVHandle ZeroBytes(Size size) {
  CVHandle handle = NewHandle(size);
  if (handle != nullptr)
    std::memset(*handle, 0, static_cast<size_t>(size));
  return handle;
}

int16_t QueryProperty(uint32_t, uint32_t key, int32_t, int32_t* value, CVHandle* handle) {
  if (key == CV_PROPERTY_NUM_CHANNELS)
    *value = host->channels;
  else if (host->input->Below(4) != 0)
    *handle = ZeroBytes(host->input->Byte());
  return AnyResult();
}

// A dialog whose user does something quick and gives some answer.
int16_t ConstructDialog(FilterRecord* record, LM_globals* globals) {
  const int16_t result = AnyResult();
  globals->dialog = result == 0 ? FAKE_DIALOG : nullptr;
  const auto size = static_cast<int16_t>(host->channels % 16 + 8);
  Rect preview = {2, 2, static_cast<int16_t>(size - 2), size};
  return result != 0 ? result : LM_SetUpPreview(record, globals, {0, 0, size, size}, &preview);
}
void DisposeDialog(LM_globals* globals) {
  globals->dialog = nullptr;
}
int16_t RunDialog(FilterRecord*, LM_globals* globals) {
  FuzzInput& input = *host->input;
  globals->Default();
  for (int i = input.Below(4); i > 0; --i) {
    globals->CreateNewLight(input.Number(), input.Number());
    globals->SetBumpChannel(input.Number());
    if (globals->BumpChannel() != 0)
      LM_GetPreviewBumpPixelMap(globals);
    const CVPixelMap& frame = globals->previewMaps[LM_FRAME_MAP];
    if (LM_ShadePreview(globals) == 0 && globals->record->showPixels != nullptr)
      LM_DisplayPixels(globals->record, &frame, frame.bounds, 0, 0);
  }
  const int16_t result = AnyResult();
  // As the dialog's own code may: everything is left as it is.
  if (result == CV_RESULT_NO_MEMORY)
    throw std::bad_alloc();
  globals->FreeCaches();
  DisposeDialog(globals);
  return result;
}
constexpr LM_dialog_services DIALOG = {ConstructDialog, RunDialog, DisposeDialog};

foo* WholeParameters() {
  static foo params;
  LM_style style = LM_NewStyle();
  style.lightsRead = style.numLights = 1;
  style.lights[0] = LM_NewStyleLight();
  style.lights[0].type = LM_LIGHT_SPOT;
  LM_ParametersFromStyle(style, 30, 20, 5, &params);
  return &params;
}

// A parameter block as kept from a run, then spoilt.
void KeepParameters(FuzzInput& input) {
  FilterRecord& record = host->record;
  DisposeHandle(record.savedParams);
  const bool whole = input.Below(8) != 0;
  record.savedParams = ZeroBytes(whole ? static_cast<Size>(sizeof(foo)) : input.Byte());
  if (!whole)
    return;
  static foo* const params = WholeParameters();
  params->lights[0].type = input.Byte();
  params->bumpChannel = static_cast<int16_t>(input.Below(6));
  std::memcpy(*record.savedParams, params, sizeof *params);
  for (int i = input.Below(4); i > 0; --i)
    (*record.savedParams)[static_cast<uint16_t>(input.Short()) % sizeof(foo)] =
        static_cast<char>(input.Byte());
}

void ChangeRecord(FuzzInput& input) {
  FilterRecord& record = host->record;
  const bool there = input.Below(2) == 0;
  switch (input.Below(12)) {
  case 0:
    record.filterArea = AnyRect(input);
    break;
  case 1:
    record.filterArea = {input.Short(), input.Short(), input.Short(), input.Short()};
    break;
  case 2:
    record.colorMode = static_cast<int16_t>(input.Below(5));
    break;
  case 3:
    record.hostSignature ^= input.Byte();
    break;
  case 4:
    record.showPixels = there ? ShowPixels : nullptr;
    break;
  case 5:
    record.nextTile = there ? NextTile : nullptr;
    break;
  case 6:
    record.queryProperty = there ? QueryProperty : nullptr;
    break;
  case 7:
    record.absolutePlanesSupported = there ? 1 : 0;
    break;
  case 8:
    record.maskUsable = input.Byte();
    record.maskPresent = static_cast<int8_t>(input.Byte());
    break;
  case 9:
    host->channels = static_cast<int16_t>(input.Byte());
    break;
  case 10:
    host->untilCancel = input.Byte();
    break;
  default:
    KeepParameters(input);
  }
}

void Call(int selector) {
  constexpr int16_t UNWRITTEN = 77;
  int16_t result = UNWRITTEN;
  CVAboutRecord about = {};
  void* argument = selector == LM_SEL_ABOUT ? static_cast<void*>(&about) : &host->record;
  Check(LM_AnswerHost(selector, argument, &host->data, &result) == 0, "the entry point answers 0");
  Check(result != UNWRITTEN, "every call has a result");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  TB_SetMemoryBudget(1 << 30); // asking the machine each time takes longer than all the rest
  LM_SetDialogServices(&DIALOG);
  TB_SetAlertPresenter([](const TB_Message&, void*, ModalFilterUPP) -> int16_t { return 1; });
  TB_SetAboutPresenter([](const TB_Message&, void*, ModalFilterUPP) -> int16_t { return 1; });
  const uint64_t blocks = TB_BlocksInUse();
  FuzzInput input(data, size);
  Host here;
  host = &here;
  here.input = &input;
  here.record.testCancel = TestCancel;
  here.record.reportProgress = Progress;
  here.record.filterArea = {0, 0, static_cast<int16_t>(input.Byte() % 100), 30};
  here.record.hostSignature = CV_HOST_SIGNATURE;
  here.record.colorMode = CV_MODE_RGB;
  here.record.showPixels = ShowPixels;
  here.record.nextTile = NextTile;
  here.record.absolutePlanesSupported = 1;
  here.record.queryProperty = QueryProperty;
  KeepParameters(input);
  for (int step = 0; step < MOST_STEPS && !input.Empty(); ++step) {
    const int kind = input.Below(16);
    if (kind == 15) {
      ChangeRecord(input);
      continue;
    }
    const int selector = kind < 8 ? LM_SEL_CONTINUE : kind < 14 ? kind - 8 : input.Short();
    if (selector == LM_SEL_CONTINUE)
      Deliver();
    Call(selector);
  }
  Call(LM_SEL_FINISH);
  if (here.data != 0)
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an integer by contract
    LM_DestroyGlobals(reinterpret_cast<LM_globals*>(here.data));
  DisposeHandle(here.record.savedParams);
  Check(TB_BlocksInUse() == blocks, "nothing is left behind");
  return 0;
}
