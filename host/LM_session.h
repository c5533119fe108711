// The steps of a run of the filter, as the host calls for them. One call at a time, on the host's
// thread. Results are the program's result codes.
#pragma once

#include <new>

#include "LM_globals.h"

// What a step answers. An exception is an answer like any other, so that whoever asked for the step
// cleans up after it in one way. step(): an int16_t.
template <class Step> int16_t LM_ResultOf(Step step) noexcept {
  constexpr int16_t FAILED = -36;
  try {
    return step();
  } catch (const std::bad_alloc&) {
    return CV_RESULT_NO_MEMORY;
  } catch (...) {
    return FAILED;
  }
}

// Answers one call of the host, the plug-in's resources at hand; arguments and result are those of
// CVFilterEntry. The settings object is made on the first call that needs it, its address kept in
// *data; a first interactive run that ends in cancel or failure releases it again. A call out of a
// service that another call is using is stopped. Lets no exception out, for the host need not even
// be C++.
int LM_AnswerHost(int selector, void* record, intptr_t* data, int16_t* result) noexcept;

// Shows the about box.
int16_t LM_DoAbout(const CVAboutRecord* about);

// Checks that the host offers what the plug-in needs and that the image is RGB; what is missing is
// told in an alert. Allocates nothing.
int16_t LM_DoPrepare(FilterRecord* record);

// Begins a run: interactive, with the dialog built and the first preview tile requested, or from
// the kept parameter block, with the first real tile requested. CV_RESULT_STOPPED when there is no
// such block, CV_RESULT_NO_DIALOG when the program has no dialog.
int16_t LM_DoStart(FilterRecord* record, LM_globals* globals);

// Takes the delivered tile: collects the preview, runs the dialog after its last tile, or shades a
// real tile and requests the next.
int16_t LM_DoContinue(FilterRecord* record, LM_globals* globals);

// Releases the buffers of the run and a dialog that is still there. Always 0.
int16_t LM_DoFinish(LM_globals* globals);
