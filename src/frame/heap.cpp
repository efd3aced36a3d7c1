// In a file of their own, so that a program that links the objects may bring hooks that measure.
#include "frame/heap.h"

extern "C" {

void odxHeapStatsInit() {}
void odxHeapStatsMalloc(void*, size_t) {}
void odxHeapStatsFree(void*) {}
void odxHeapStats() {}
}
