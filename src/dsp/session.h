// The session with the remote processor, and what brings it back after a restart.
#ifndef ODX_DSP_SESSION_H
#define ODX_DSP_SESSION_H

#include "dsp/remote.h"

extern "C" {
int odxZ9Initialize(int mode, char* version); // the same as ODXAZ9_init
int odxZ9SessionInit(unsigned mode, const char* version);
int odxZ9SessionInit_internal(unsigned mode, const char* version); // with the stub already open
void odxZ9SessionDeInit();

// Makes a restarted processor usable again: 0 when it is, -1 when it does not come back.
unsigned adspSSRcleanUpSequence();

extern uint32_t Z9_constraint_checks_enable; // as HW_constraint_checks_enable, for the variants
}

#endif
