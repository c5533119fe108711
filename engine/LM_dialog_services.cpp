#include "LM_dialog_services.h"

namespace {

const LM_dialog_services* dialogServices = nullptr;

} // namespace

const LM_dialog_services* LM_DialogServices() {
  return dialogServices;
}

void LM_SetDialogServices(const LM_dialog_services* services) {
  dialogServices = services;
}
