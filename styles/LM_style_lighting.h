// From a style to light on an image, as opening the dialog on the image, choosing the style and
// pressing OK gives it.
#pragma once

#include "LM_light_figure.h"
#include "LM_preview_geometry.h"
#include "LM_render.h"
#include "LM_style_lengths.h"

// A light of a style, ready to be converted: its lengths are in the unit of the conversion.
LM_light_figure LM_FigureOf(const LM_style_light& light);

// The relief channel, or 0 when a document of numChannels channels does not have it.
int16_t LM_ChannelOrNone(int16_t channel, int numChannels);

// Fills a parameter block, header included. areaWidth, areaHeight: the filter area, in image
// pixels. numChannels: channels of the document; a relief channel that it does not have, or that is
// negative, is none. False, and nothing written, when the style has no whole light.
bool LM_ParametersFromStyle(const LM_style& style, int areaWidth, int areaHeight, int numChannels,
                            foo* params);
// The same as the dialog's preview has it, in that geometry: reduced, with the preview's falloff,
// and with values beyond the sliders' ends, which OK would cut, as the style has them.
bool LM_PreviewParametersFromStyle(const LM_style& style, const LM_preview_geometry& geometry,
                                   int numChannels, foo* params);

// Prepares a job for an image and its filter area, both in pixels. job.params.bumpChannel is then
// the relief that the style takes. NoLight when the style has no whole light; else as
// LM_PrepareRender.
LM_render_result LM_PrepareStyle(const LM_style& style, const LM_rect& area, int32_t imageWidth,
                                 int32_t imageHeight, int numChannels, LM_render_job& job);
