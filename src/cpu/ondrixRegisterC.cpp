#include "cpu/ondrixRegisterC.h"

// This processor sees all memory.
int odxRegisterBufC(void*, unsigned int, int)
{
    return 0;
}
