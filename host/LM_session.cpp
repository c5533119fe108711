#include "LM_session.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "LM_alerts.h"
#include "LM_constants.h"
#include "LM_dialog_services.h"
#include "LM_floating_point.h"
#include "LM_host_services.h"
#include "LM_memory.h"
#include "LM_preview.h"
#include "LM_shader.h"
#include "LM_style.h"
#include "LM_style_json.h"
#include "LM_style_settings.h"
#include "LM_tiles.h"
#include "LimnResources.h"
#include "MacDialogs.h"
#include "MacMemory.h"
#include "MacResources.h"

namespace {

constexpr int16_t ABOUT_BOX = 16001;

// True when the channel that the parameter block names can be read from this document.
bool HasBumpChannel(FilterRecord* record, const foo* params) {
  int16_t channels = 0;
  if (params->bumpChannel <= 0)
    return false;
  return LM_GetNumChannels(channels, record) != CV_RESULT_OK ||
         LM_ChannelOrNone(params->bumpChannel, channels) != 0;
}

void ReportTiles(FilterRecord* record, const LM_globals* g) {
  if (record->reportProgress != nullptr)
    record->reportProgress(g->tilesDone, g->tilesTotal);
}

// Requests the first tile of the image, or of its bump channel.
void BeginRealWalk(FilterRecord* record, LM_globals* g, foo* params) {
  // A kept block must not lead to the buffers of some earlier preview.
  LM_DetachParameterCaches(params);
  g->tileWalkFlag = 0;
  LM_SetFirstRealTileRects(record, g);
  g->bumpTilePending = 0;
  g->walkHasRelief = HasBumpChannel(record, params) ? 1 : 0;
  if (g->walkHasRelief == 1) {
    g->bumpMap.scale = params->bumpHeight;
    LM_RealToBumpRects(record, g);
  }
  ReportTiles(record, g);
}

// True when the host has delivered all three planes of the tile, and as much room for the output.
bool TileIsDelivered(const FilterRecord* record) {
  const CVRect& in = record->inTileRect;
  const CVRect& out = record->outTileRect;
  const int32_t rows = in.bottom - in.top;
  const int32_t columns = in.right - in.left;
  return rows > 0 && columns > 0 && out.bottom - out.top >= rows &&
         out.right - out.left >= columns &&
         record->inLastPlane - record->inFirstPlane == LM_PLANES - 1;
}

int16_t ContinueRealWalk(FilterRecord* record, LM_globals* g) {
  if (g->walkHasRelief == 0) {
    if (TileIsDelivered(record))
      LM_ShadeTile(record, g);
    LM_SetNextRealTileRects(record, g);
    ++g->tilesDone;
    ReportTiles(record, g);
    return CV_RESULT_OK;
  }
  if (g->bumpTilePending == 1) {
    if (TileIsDelivered(record))
      LM_ShadeTileWithBumps(record, &g->bumpMap, g);
    LM_SetNextRealTileRects(record, g);
    const CVRect& next = record->inTileRect;
    // The walk's end is an empty request, which must stay empty.
    if (next.top != next.bottom || next.left != next.right)
      LM_RealToBumpRects(record, g);
    g->bumpTilePending = 0;
    return CV_RESULT_OK;
  }
  if (LM_TestCancel(record))
    return CV_RESULT_STOPPED;
  if (LM_StoreBumpMap(record, g) != 0)
    return CV_RESULT_NO_MEMORY;
  LM_BumpToRealRects(record, g);
  g->bumpTilePending = 1;
  ++g->tilesDone;
  ReportTiles(record, g);
  return CV_RESULT_OK;
}

// Runs the dialog. Memory that runs out somewhere in it ends it like any other failure, and must
// not leave it, or caches that fit the preview alone, to the calls that follow.
int16_t AskUser(FilterRecord* record, LM_globals* g) {
  const int16_t result = LM_ResultOf([&] { return LM_DialogServices()->run(record, g); });
  g->FreeCaches();
  if (g->dialog != nullptr)
    LM_DialogServices()->dispose(g);
  return result;
}

// Runs the dialog on the settings of an earlier run, which come back when it is cancelled.
int16_t RunDialogOnCurrentSettings(FilterRecord* record, LM_globals* g) {
  LM_globals* backup = LM_NewGlobals();
  if (backup == nullptr)
    return CV_RESULT_NO_MEMORY;
  backup->CopySettingsFrom(*g);
  const int16_t result = AskUser(record, g);
  if (result != CV_RESULT_OK) {
    g->CopySettingsFrom(*backup);
    g->dialogPending = 0;
    if (foo* params = LM_Parameters(record)) {
      g->ConvertToParameters(params, 0);
      LM_DetachParameterCaches(params);
    }
  }
  LM_DestroyGlobals(backup);
  return result;
}

// A program may name the lights that a first dialog begins with, as a style's JSON in the
// environment's LIMN_STYLE. They are then the settings, as if an earlier run had left them.
void UseNamedStyle(LM_globals* g) {
  const char* json = std::getenv("LIMN_STYLE");
  LM_style style;
  std::string why;
  if (json == nullptr || !LM_StyleFromJson(json, style, why))
    return;
  g->Default();
  if (LM_ApplyStyle(style, *g))
    g->SetUseCurrentSettings(1);
}

// Runs the dialog on default settings. Its previews write to the parameter block, which is as it
// was when the dialog is cancelled: the host may repeat the filter with it.
int16_t RunFirstDialog(FilterRecord* record, LM_globals* g) {
  foo* backup = static_cast<foo*>(LM_NewPtr(sizeof(foo)));
  if (backup == nullptr)
    return CV_RESULT_NO_MEMORY;
  std::memcpy(backup, LM_Parameters(record), sizeof *backup);
  const int16_t result = AskUser(record, g);
  foo* params = LM_Parameters(record);
  if (result != CV_RESULT_OK && params != nullptr)
    std::memcpy(params, backup, sizeof *backup);
  LM_DisposePtr(backup);
  return result;
}

// Runs the dialog and begins the walk. The parameter block is looked up again afterwards, since
// the host has been at work meanwhile.
int16_t RunDialog(FilterRecord* record, LM_globals* g) {
  // A kept block that nobody can read makes way for a new one once the dialog is accepted.
  CVHandle kept = record->savedParams;
  const bool isNew = LM_Parameters(record) == nullptr;
  if (isNew) {
    CVHandle made = LM_NewParameters();
    if (made == nullptr)
      return CV_RESULT_NO_MEMORY;
    record->savedParams = made;
  }
  // Runs without a dialog leave no settings that this one could go on from.
  if (g->numLights == 0)
    g->SetUseCurrentSettings(0);
  const int16_t result = LM_ResultOf([&] {
    if (g->UseCurrentSettings() == 0)
      UseNamedStyle(g);
    return g->UseCurrentSettings() == 1 ? RunDialogOnCurrentSettings(record, g)
                                        : RunFirstDialog(record, g);
  });
  if (isNew)
    DisposeHandle(result == CV_RESULT_OK ? kept : std::exchange(record->savedParams, kept));
  if (result != CV_RESULT_OK)
    return result;
  g->dialogPending = 0;
  foo* params = LM_Parameters(record);
  if (params == nullptr)
    return CV_RESULT_STOPPED;
  g->ConvertToParameters(params, 0);
  BeginRealWalk(record, g, params);
  return CV_RESULT_OK;
}

// The step that a selector names. Sets *data to 0 when it released the settings object.
int16_t AnswerStep(int16_t selector, void* record, intptr_t* data, LM_globals* globals) {
  FilterRecord* filter = static_cast<FilterRecord*>(record);
  int16_t result = CV_RESULT_OK;
  switch (selector) {
  case LM_SEL_ABOUT:
    return LM_DoAbout(static_cast<const CVAboutRecord*>(record));
  case LM_SEL_PARAMETERS:
    globals->dialogPending = 1;
    return CV_RESULT_OK;
  case LM_SEL_PREPARE:
    return LM_DoPrepare(filter);
  case LM_SEL_START:
    result = LM_ResultOf([&] { return LM_DoStart(filter, globals); });
    if (result != CV_RESULT_OK) {
      globals->dialogPending = 0;
      LM_DoFinish(globals);
    }
    return result;
  case LM_SEL_CONTINUE:
    result = LM_ResultOf([&] { return LM_DoContinue(filter, globals); });
    if (result != CV_RESULT_OK && globals->dialogPending == 1 &&
        globals->UseCurrentSettings() == 0) {
      LM_DoFinish(globals);
      LM_DestroyGlobals(globals);
      *data = 0;
    }
    return result;
  case LM_SEL_FINISH:
    LM_DoFinish(globals);
    globals->SetUseCurrentSettings(1);
    globals->dialogPending = 0;
    return CV_RESULT_OK;
  default:
    return CV_RESULT_BAD_SELECTOR;
  }
}

int16_t AnswerCall(int16_t selector, void* record, intptr_t* data) {
  if (selector == LM_SEL_FINISH && *data == 0)
    return CV_RESULT_OK;
  if (*data == 0)
    *data = reinterpret_cast<intptr_t>(LM_NewGlobals());
  if (*data == 0)
    return CV_RESULT_NO_MEMORY;
  LM_SetConstants();
  // The contract's slot is an integer as wide as a pointer.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  LM_globals* globals = reinterpret_cast<LM_globals*>(*data);
  // A host whose services run its own event loop may come back here out of one of them.
  if (std::exchange(globals->answering, 1) == 1)
    return CV_RESULT_STOPPED;
  const int16_t result = LM_ResultOf([&] { return AnswerStep(selector, record, data, globals); });
  if (*data != 0)
    globals->answering = 0;
  return result;
}

} // namespace

int16_t LM_DoAbout(const CVAboutRecord* about) {
  ShowAbout(about, ABOUT_BOX);
  return CV_RESULT_OK;
}

int16_t LM_DoPrepare(FilterRecord* record) {
  if (record->showPixels == nullptr) {
    LM_ShowNoDisplayPixelsError();
    return CV_RESULT_STOPPED;
  }
  if (!LM_HostIsCorvaline(record)) {
    LM_ShowHostNotCorvalineError();
    return CV_RESULT_STOPPED;
  }
  if (record->colorMode != CV_MODE_RGB)
    return CV_RESULT_BAD_MODE;
  if (LM_HasFPU() == 0) {
    LM_ShowNoFPUError();
    return CV_RESULT_STOPPED;
  }
  if (record->nextTile == nullptr || record->absolutePlanesSupported == 0) {
    LM_ShowHostNotCorvalineError();
    return CV_RESULT_STOPPED;
  }
  return CV_RESULT_OK;
}

int16_t LM_DoStart(FilterRecord* record, LM_globals* globals) {
  // A run that the host never finished must not leak.
  LM_DoFinish(globals);
  // A run that ended while it read relief has left its planes.
  LM_RequestImagePlanes(record);
  // The preview too takes every pixel, and leaves out what it does not show.
  record->inSampleStep = CV_FIXED_ONE;
  record->maskSampleStep = CV_FIXED_ONE;
  globals->record = record;
  if (!LM_GrowHeights(globals->bumpMap, LM_FIRST_HEIGHT_BYTES))
    return CV_RESULT_NO_MEMORY;
  LM_SetUpHeightFilter(&globals->bumpMap);
  if (globals->dialogPending != 1) {
    foo* params = LM_Parameters(record);
    if (params == nullptr)
      return CV_RESULT_STOPPED;
    BeginRealWalk(record, globals, params);
    return CV_RESULT_OK;
  }
  if (LM_DialogServices() == nullptr)
    return CV_RESULT_NO_DIALOG;
  globals->previewOn = 1;
  globals->previewComplete = 0;
  const int16_t result = LM_DialogServices()->construct(record, globals);
  if (result == CV_RESULT_OK)
    LM_SetFirstPreviewTileRects(record, globals);
  return result;
}

int16_t LM_DoContinue(FilterRecord* record, LM_globals* globals) {
  // A host that never started this run has nothing to continue.
  if (globals->record != record)
    return CV_RESULT_STOPPED;
  if (globals->dialogPending != 1) {
    foo* params = LM_Parameters(record);
    if (params == nullptr)
      return CV_RESULT_STOPPED;
    // It need not be the block that the run began with.
    LM_DetachParameterCaches(params);
    return ContinueRealWalk(record, globals);
  }
  if (globals->previewComplete == 0) {
    LM_CalcTilePreview(record, globals);
    LM_SetNextPreviewTileRects(record, globals);
    return CV_RESULT_OK;
  }
  return globals->dialog != nullptr ? RunDialog(record, globals) : int16_t{CV_RESULT_STOPPED};
}

int16_t LM_DoFinish(LM_globals* globals) {
  LM_FreeRunBuffers(globals);
  const LM_dialog_services* dialog = LM_DialogServices();
  if (dialog != nullptr && globals->dialog != nullptr)
    dialog->dispose(globals);
  return CV_RESULT_OK;
}

int LM_AnswerHost(int selector, void* record, intptr_t* data, int16_t* result) noexcept {
  const LM_floating_point floatingPoint;
  *result = LM_ResultOf([&] {
    [[maybe_unused]] static const Boolean carried =
        TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
    return AnswerCall(static_cast<int16_t>(selector), record, data);
  });
  return 0;
}
