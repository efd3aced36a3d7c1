// Reference implementations: integral images.
#include "cpu/ondrixIntegralC.h"

#include "cpu/ondrixIntegral.h"

using namespace odx;

namespace
{

struct Lines {
    template <class Term, class T>
    static T next(const uint8_t* src, uint32_t count, T sum, const T* above, T* dst)
    {
        return integral::entries<Term>(src, count, sum, above, dst);
    }
    static void separate(const uint8_t* pairs, uint32_t count, uint8_t* first, uint8_t* second)
    {
        integral::takeApart(pairs, count, first, second);
    }
};

} // namespace

extern "C" {

#define ODX_COLUMN(name) name##C
#include "cpu/ondrixIntegralOperations.inc"

// The triangle below (X, Y) is those below its neighbours to the left and to the right in the row above, which
// have the one two rows above in common, and the two pixels that neither has. At the left edge, and one column
// beyond the right one, a triangle has what the next one inwards has in the row above.
void tiltedRowC(const uint8_t* src, const uint8_t* srcAbove, uint32_t width, const uint32_t* above,
                const uint32_t* twoAbove, uint32_t* dst)
{
    dst[0] = above[1];
    for (uint32_t X = 1; X < width; ++X)
        dst[X] = above[X - 1] + above[X + 1] - twoAbove[X] + src[X - 1] + srcAbove[X - 1];
    dst[width] = above[width - 1] + src[width - 1] + srcAbove[width - 1];
}

odxStatus odxTiltedIntegralu8s32C(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, int32_t* dst, unsigned int dstStride)
{
    const Rows rows = {reinterpret_cast<uint32_t*>(dst), dstStride};
    memset(dst, 0, sizeof *dst * (size_t{srcWidth} + 1));
    Rows row = rows.next();
    row.pixels[0] = 0;
    for (uint32_t x = 0; x < srcWidth; ++x)
        row.pixels[x + 1] = src[x];
    const uint32_t* twoAbove = rows.pixels;
    for (uint32_t y = 1; y < srcHeight; ++y) {
        const uint32_t* const above = row.pixels;
        row = row.next();
        tiltedRow_(rowOf(src, srcStride, y), rowOf(src, srcStride, y - 1), srcWidth, above, twoAbove, row.pixels);
        twoAbove = above;
    }
    return ONDRIX_SUCCESS;
}
}
