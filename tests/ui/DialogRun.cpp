#include "DialogRun.h"

#include "HostDialogs.h"
#include "LM_mac_UI.h"
#include "LM_session.h"
#include "LM_style_codec.h"
#include "LM_style_fields.h"
#include "LimnResources.h"
#include "MacFiles.h"
#include "MacResources.h"
#include "MacStrings.h"
#include "ToolboxDesktop.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

constexpr int WIDTH = 90;
constexpr int HEIGHT = 60;
constexpr int TILE = 256;

// What the host's functions, having no argument for it, work on.
struct HostState {
  FilterRecord* record = nullptr;
  HostAnswers* answers = nullptr;
  std::vector<uint8_t> in, out;
};
HostState host;

uint8_t Sample(int x, int y, int plane) {
  x = std::clamp(x, 0, WIDTH - 1);
  y = std::clamp(y, 0, HEIGHT - 1);
  return static_cast<uint8_t>(60 + x + y * 2 + plane * 17);
}

void Deliver() {
  FilterRecord& record = *host.record;
  const CVRect& rect = record.inTileRect;
  const int planes = record.inLastPlane - record.inFirstPlane + 1;
  ASSERT_LE(rect.right - rect.left, TILE);
  host.in.clear();
  for (int y = rect.top; y < rect.bottom; ++y) {
    for (int x = rect.left; x < rect.right; ++x) {
      for (int plane = record.inFirstPlane; plane <= record.inLastPlane; ++plane)
        host.in.push_back(Sample(x, y, plane));
    }
  }
  record.inPixels = host.in.data();
  record.inRowStride = (rect.right - rect.left) * planes;
  const CVRect& target = record.outTileRect;
  host.out.assign(static_cast<size_t>(TILE) * TILE * 3, 0);
  record.outPixels = host.out.data();
  record.outRowStride = std::max(target.right - target.left, 1) * 3;
}

int16_t NextTile() {
  Deliver();
  return host.answers->trouble(HostService::NextTile);
}

int16_t ShowPixels(const CVPixelMap* map, const CVRect32* source, int32_t row, int32_t column,
                   void*) {
  ++host.answers->shown;
  if (const int16_t trouble = host.answers->trouble(HostService::ShowPixels))
    return trouble;
  return ShowPixelMap(map, source, row, column);
}

int16_t QueryProperty(uint32_t, uint32_t key, int32_t index, int32_t* value, CVHandle* handle) {
  const HostAnswers& answers = *host.answers;
  if (const int16_t trouble = answers.trouble(HostService::QueryProperty))
    return trouble;
  if (key == CV_PROPERTY_NUM_CHANNELS) {
    *value = static_cast<int32_t>(answers.channels.size());
    return 0;
  }
  const std::string& name = answers.channels[static_cast<size_t>(index)];
  *handle = NewHandle(static_cast<Size>(name.size()));
  if (*handle == nullptr)
    return CV_RESULT_NO_MEMORY;
  std::copy(name.begin(), name.end(), **handle);
  return 0;
}

int16_t PickColor(CVColorRequest* request) {
  HostAnswers& answers = *host.answers;
  answers.asked = *request;
  answers.prompt = TB_StdString(request->prompt);
  if (const int16_t trouble = answers.trouble(HostService::PickColor))
    return trouble;
  request->components[0] = 1;
  request->components[1] = 200;
  request->components[2] = 999;
  return answers.picker;
}

int16_t NoteAlert(const TB_Message& message, void*, ModalFilterUPP) {
  host.answers->alerts.push_back(message.number);
  return 1;
}

void Progress(int32_t, int32_t) {}
uint8_t NoCancel() {
  return 0;
}

} // namespace

DialogRun::DialogRun() {
  std::string pattern = std::filesystem::temp_directory_path() / "dialog-XXXXXX";
  folder = std::filesystem::canonical(mkdtemp(pattern.data()));
  setenv("XDG_DATA_HOME", folder.c_str(), 1);
  TB_SetLanguage("en");
  TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
  LM_UseDesktopDialog();
  TB_SetAlertPresenter(NoteAlert);
  record.hostSignature = CV_HOST_SIGNATURE;
  record.colorMode = CV_MODE_RGB;
  record.filterArea = {0, 0, HEIGHT, WIDTH};
  record.absolutePlanesSupported = 1;
  record.showPixels = ShowPixels;
  record.nextTile = NextTile;
  record.queryProperty = QueryProperty;
  record.reportProgress = Progress;
  record.testCancel = NoCancel;
  record.colorPicker = PickColor;
  host = {&record, &answers, {}, {}};
}

DialogRun::~DialogRun() {
  int16_t result = 0;
  LM_AnswerHost(LM_SEL_FINISH, &record, &slot, &result);
  if (Globals() != nullptr)
    LM_DestroyGlobals(Globals());
  if (record.savedParams != nullptr)
    DisposeHandle(record.savedParams);
  TB_SetDefaultDirectory("");
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
}

int16_t DialogRun::Run(ToolboxScript& script, Script expected) {
  int16_t result = 0;
  const auto call = [&](int16_t selector) {
    LM_AnswerHost(selector, &record, &slot, &result);
    return result;
  };
  call(LM_SEL_PARAMETERS);
  if (call(LM_SEL_PREPARE) != 0 || call(LM_SEL_START) != 0)
    return result;
  while (result == 0 && Globals()->previewComplete == 0) {
    Deliver();
    call(LM_SEL_CONTINUE);
  }
  // A script that lost its way must not leave a window waiting for ever.
  ToolboxScript watchdog;
  watchdog.Wait(30000).Call([] { ADD_FAILURE() << "a window is left open"; });
  for (int i = 0; i < 20; ++i)
    watchdog.CloseWindow().Wait(300);
  watchdog.Start();
  script.Start();
  call(LM_SEL_CONTINUE);
  EXPECT_TRUE(script.Done() || expected == Script::MayBeCut)
      << "the dialog ended before its script";
  if (slot != 0) {
    int16_t finished = 0;
    LM_AnswerHost(LM_SEL_FINISH, &record, &slot, &finished);
  }
  return result;
}

int16_t DialogRun::RunAndCancel(const std::function<void(ToolboxScript&)>& steps) {
  ToolboxScript script;
  steps(script);
  script.KeyPress(kEscapeKeyCode);
  return Run(script);
}

Rect BoxInResource(int16_t dialog, int16_t item) {
  const nlohmann::json* resource = TB_Resource("DLOG", dialog);
  for (const nlohmann::json& entry : (*resource)["items"]) {
    if (entry["number"] == item) {
      const std::vector<int16_t> box = entry["box"];
      Rect rect;
      SetRect(&rect, box[0], box[1], static_cast<int16_t>(box[0] + box[2]),
              static_cast<int16_t>(box[1] + box[3]));
      return rect;
    }
  }
  return {};
}

Point MiddleOf(int16_t item, int16_t dialog) {
  const Rect box = BoxInResource(dialog, item);
  return {static_cast<int16_t>((box.top + box.bottom) / 2),
          static_cast<int16_t>((box.left + box.right) / 2)};
}

void ClickItem(ToolboxScript& script, int16_t item, int16_t dialog) {
  const Point middle = MiddleOf(item, dialog);
  script.Click(middle.h, middle.v);
}

void DragBetween(ToolboxScript& script, Point from, Point to) {
  script.Drag(from.h, from.v, to.h, to.v);
}

Point BodyOf(int light) {
  return {static_cast<int16_t>(WORK_AREA_MIDDLE.v - 100),
          static_cast<int16_t>(WORK_AREA_MIDDLE.h - 120 + 15 * light)};
}

void DialogRun::UseLights(int count) const {
  LM_globals* globals = Globals();
  while (globals->numLights > 1)
    globals->DeleteCurrentLight();
  for (int i = 0; i < count; ++i) {
    const Point body = BodyOf(i);
    if (i > 0)
      globals->CreateNewLight(body.h, body.v);
    LM_light_UI& light = globals->lights[i];
    light.type = LM_LIGHT_OMNI;
    light.center = {static_cast<int16_t>(body.h - WORK_AREA_MIDDLE.h),
                    static_cast<int16_t>(body.v - WORK_AREA_MIDDLE.v)};
    light.radius = 60;
    light.on = 1;
    light.intensity = static_cast<int16_t>(i);
    light.InvalidateCaches();
  }
  globals->curLight = 0;
  LM_SetCurLightToDialog(globals->dialog, globals);
}

std::string DialogRun::PopupText(int16_t item) const {
  Str255 text;
  LM_PopupGetItem(Dialog(), item, LM_ControlValue(Dialog(), item), text);
  return TB_StdString(text);
}

std::filesystem::path DialogRun::StylePath(const std::string& name) const {
  return folder / "limn" / "Lighting Styles" / name;
}

std::vector<std::string> DialogRun::StyleFiles() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(StylePath("")))
    names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

std::string DialogRun::Bytes(const std::string& name) const {
  std::ifstream file(StylePath(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void DialogRun::WriteStyle(const std::string& name, int16_t gloss, int16_t channel) const {
  LM_style style = LM_NewStyle();
  style.gloss = gloss;
  style.bumpChannel = channel;
  style.numLights = style.lightsRead = 1;
  style.lights[0] = LM_NewStyleLight();
  WriteStyle(name, style);
}

void DialogRun::WriteStyle(const std::string& name, const LM_style& style) const {
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(style, bytes);
  std::filesystem::create_directories(StylePath(""));
  std::ofstream(StylePath(name), std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
}
