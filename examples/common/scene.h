// The picture for when there is none.
#ifndef ONDRIX_EXAMPLES_SCENE_H
#define ONDRIX_EXAMPLES_SCENE_H

#include "common/picture.h"

namespace demo
{

// A lighthouse at dusk, always the same: edges, texture, gradients, colour and a little noise.
Picture renderScene(int width = 960, int height = 640);

} // namespace demo

#endif
