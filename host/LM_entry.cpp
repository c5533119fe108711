#include "LM_entry.h"

#include "LM_floating_point.h"
#include "LM_session.h"
#include "LimnResources.h"
#include "MacResources.h"

int LM_AnswerHost(int selector, void* record, intptr_t* data, int16_t* result) noexcept {
  const LM_floating_point floatingPoint;
  *result = LM_ResultOf([&] {
    static const Boolean carried = TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
    static_cast<void>(carried);
    LM_AnswerCall(static_cast<int16_t>(static_cast<uint16_t>(selector)), record, data, result);
    return *result;
  });
  return 0;
}
