// The slider as the Control Manager knows it: its definition procedure, and what that does.
#pragma once

#include "LM_mac_slider_control.h"

// The control definition procedure, registered as definition 129, "SliderControl". Differs from
// the usual in calcCRgns, where the highest bit asks for the whole control, not for the indicator.
// A slider that could not be made answers 0 to everything and draws nothing.
int32_t SC_main(short varCode, ControlHandle control, short message, intptr_t param);

// Makes the control's slider. The control's reference value holds the number of the string list
// with its two labels in the high 16 bits and the title's width in the low 16; it becomes the
// slider, null when memory is short.
LM_slider_type_0* LM_InitControl(short varCode, ControlHandle control);
// The slider of a control that SC_main defines, once that was made; null when it could not be.
LM_slider_type_0* LM_SliderOf(ControlHandle control);
void LM_DispControl(LM_slider_type_0* slider);
// Lets the indicator follow the mouse, sideways and along the bar, until the button is released.
void LM_DragIndicator(LM_slider_type_0* slider);
