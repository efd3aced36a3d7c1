// The sections of the demo, from the list in sections.def. A new one is a file of its own and a line of that list.
#ifndef ONDRIX_EXAMPLES_DEMO_SECTIONS_H
#define ONDRIX_EXAMPLES_DEMO_SECTIONS_H

#include "demo/stage.h"

namespace demo
{

#define DEMO_SECTION(name) void name(Stage& stage);
#include "demo/sections.def"
#undef DEMO_SECTION

constexpr void (*kSections[])(Stage&) = {
#define DEMO_SECTION(name) name,
#include "demo/sections.def"
#undef DEMO_SECTION
};

} // namespace demo

#endif
