// Answering a call of the host from a module's entry point.
#ifndef LM_ENTRY_H
#define LM_ENTRY_H

#include <cstdint>

// Answers one call, the plug-in's resources at hand. The arguments and the result are those of
// CVFilterEntry. Lets no exception out, for the host need not even be C++.
int LM_AnswerHost(int selector, void* record, intptr_t* data, int16_t* result) noexcept;

#endif
