// The sections of the demo, each in a file of its own. A new one is declared and listed here.
#ifndef ONDRIX_EXAMPLES_DEMO_SECTIONS_H
#define ONDRIX_EXAMPLES_DEMO_SECTIONS_H

#include "demo/stage.h"

namespace demo
{

void showGaussians(Stage& stage);
void showBoxes(Stage& stage);
void showMedians(Stage& stage);
void showWidePixels(Stage& stage);
void showBorders(Stage& stage);
void showColours(Stage& stage);
void showFastCorners(Stage& stage);
void showHarrisCorners(Stage& stage);

constexpr void (*kSections[])(Stage&) = {showGaussians, showBoxes,   showMedians,     showWidePixels,
                                         showBorders,   showColours, showFastCorners, showHarrisCorners};

} // namespace demo

#endif
