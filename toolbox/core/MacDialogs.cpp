#include "MacDialogs.h"

#include "MacMemory.h"
#include "MacResources.h"
#include "MacStrings.h"
#include "TB_Locked.h"
#include "TB_ResourceJson.h"
#include "TB_Text.h"

#include <array>
#include <cstdio>
#include <mutex>
#include <optional>
#include <utility>

namespace {

struct State {
  std::mutex mutex;
  std::array<std::string, 4> texts;
  TB_MessagePresenter alertPresenter = nullptr;
  TB_MessagePresenter aboutPresenter = nullptr;
};

int16_t PrintMessage(const TB_Message& message, void*, ModalFilterUPP) {
  std::string line = message.text + (message.detail.empty() ? "" : " " + message.detail);
  std::fprintf(stderr, "%s\n", TB_Printable(line, '\n').c_str());
  return 1;
}

std::optional<TB_Message> FindMessage(int16_t number) {
  const nlohmann::json* resource = TB_Resource("ALRT", number);
  if (!resource || !resource->is_object())
    return std::nullopt;
  TB_Message message{number, TB_StringMember(*resource, "kind"),
                     TB_FillInParamText(TB_StringMember(*resource, "text")),
                     TB_FillInParamText(TB_StringMember(*resource, "detail")),
                     TB_StringsMember(*resource, "buttons")};
  if (message.buttons.empty())
    message.buttons.emplace_back("OK");
  return message;
}

TB_MessagePresenter Exchange(TB_MessagePresenter State::*place, TB_MessagePresenter presenter) {
  const TB_Locked<State> state;
  return std::exchange((*state).*place, presenter);
}

// Shows a message outside the lock: a presenter may run for long, and come back here.
int16_t Present(TB_MessagePresenter State::*place, int16_t number, void* window,
                ModalFilterUPP filter) {
  const std::optional<TB_Message> message = FindMessage(number);
  if (!message) {
    std::fprintf(stderr, "There is no text for message %d.\n", number);
    return -1;
  }
  TB_MessagePresenter presenter = nullptr;
  {
    const TB_Locked<State> state;
    presenter = (*state).*place;
  }
  return (presenter ? presenter : PrintMessage)(*message, window, filter);
}

} // namespace

void ParamText(ConstStr255Param text0, ConstStr255Param text1, ConstStr255Param text2,
               ConstStr255Param text3) {
  const TB_Locked<State> state;
  const ConstStr255Param given[4] = {text0, text1, text2, text3};
  for (size_t i = 0; i < 4; ++i)
    if (given[i])
      state->texts[i] = TB_StdString(given[i]);
}

std::string TB_FillInParamText(std::string_view text) {
  const TB_Locked<State> state;
  std::string filled;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool mark =
        text[i] == '^' && i + 1 < text.size() && text[i + 1] >= '0' && text[i + 1] <= '3';
    if (mark)
      filled += state->texts[static_cast<size_t>(text[++i] - '0')];
    else
      filled += text[i];
  }
  return filled;
}

int16_t StopAlert(int16_t number, ModalFilterUPP filter) {
  return Present(&State::alertPresenter, number, nullptr, filter);
}

void HostDisposeHandle(void*, Handle handle) {
  DisposeHandle(handle);
}

void ShowAbout(const CVAboutRecord* about, int16_t number) {
  Present(&State::aboutPresenter, number, about ? about->hostWindow : nullptr, nullptr);
}

TB_MessagePresenter TB_SetAlertPresenter(TB_MessagePresenter presenter) {
  return Exchange(&State::alertPresenter, presenter);
}

TB_MessagePresenter TB_SetAboutPresenter(TB_MessagePresenter presenter) {
  return Exchange(&State::aboutPresenter, presenter);
}
