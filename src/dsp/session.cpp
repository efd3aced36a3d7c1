// The remote processor: absent. Every routine says so.
#include "dsp/dsp.h"

extern "C" {

int ODXAZ9_init(int, const char*)
{
    return -1;
}
void ODXAZ9_deinit() {}
int ODXAZ9_is_ready()
{
    return 0;
}
int ODXAZ9_get_current_mode()
{
    return -1;
}
void odxUpdateZ9ConstraintCheckFlag(unsigned) {}
void odxInitSharedMem(unsigned) {}
void odxDeInitSharedMem() {}
void odxCleanUpHW() {}
int64_t odxZ9GetClkX()
{
    return 0;
}
unsigned uXTable(ODX_FUNC_MANAGER*, unsigned)
{
    return 0;
}
}

void* odx::dspVariant(uint32_t)
{
    return nullptr;
}
