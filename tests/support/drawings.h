// Pictures that a test draws by a formula.
#ifndef ODX_TESTS_SUPPORT_DRAWINGS_H
#define ODX_TESTS_SUPPORT_DRAWINGS_H

#include "support/pictures.h"

namespace odx::test
{

// Each pixel is at(x, y).
template <class T, class At>
Grid<T> drawn(int width, int height, At at)
{
    Grid<T> picture(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            picture.at(x, y) = static_cast<T>(at(x, y));
    }
    return picture;
}

} // namespace odx::test

#endif
