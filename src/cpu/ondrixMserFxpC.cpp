#include "cpu/ondrixMserFxpC.h"

#include "cpu/ondrixMserFxp.h"
#include "frame/heap.h"
#include "platform/platform.h"

#include <initializer_list>

using namespace odx;
using namespace odx::mser;

namespace
{

constexpr size_t kMaskAlignment = 32;

struct Polarity {
    void *maskBlock, *arraysBlock;
    Arrays arrays;
};

struct Handle {
    uint32_t width, height, pixels, stride;
    bool eight;
    Parameters parameters;
    Polarity plus, minus; // dark regions, and bright ones
};

// Words of a row of a mask. Whole 32s, up to 255 of them: so a pixel's row is found by a multiplication.
uint32_t strideOf(uint32_t width)
{
    return (width + 31) & 0xFFE0;
}

uint32_t inside(uint32_t side)
{
    return side < 3 ? 0 : side - 2;
}

// ---- the handle ----

void freeHandle(Handle* handle)
{
    for (const Polarity* polarity : std::initializer_list<const Polarity*>{&handle->plus, &handle->minus}) {
        heapFree(polarity->maskBlock);
        heapFree(polarity->arraysBlock);
    }
    *handle = {};
    heapFree(handle);
}

void checkParameters(const Handle* pHandle)
{
    const Parameters& p = pHandle->parameters;
    if (pHandle->width <= 8160 && p.delta > 0 && p.delta < 256 && p.minSize < pHandle->pixels && p.maxSize > 1 &&
        p.minSize + 1 < p.maxSize && p.maxVariation > 0 && p.minDiversity < 256)
        return;
    fatalAssertion("ondrixMserFxpC", __LINE__,
                   "( ( pHandle->nStride&(32-1)) == 0 ) && ( pHandle->nStride <= ((1<<8)-1)*32) && ( "
                   "0<pHandle->nDelta && pHandle->nDelta<256) && ( pHandle->nMinSize < pHandle->nNumPixels) && ( "
                   "pHandle->nMaxSize > 1) && ( pHandle->nMinSize+1 < pHandle->nMaxSize) && ( pHandle->nMaxVar > "
                   "0) && ( pHandle->nMinDiv < (1<<8))");
}

bool allocateMask(Polarity& polarity, uint64_t words)
{
    const uint64_t bytes = words * sizeof(uint16_t) + kMaskAlignment - 1;
    polarity.maskBlock = heapAlloc(static_cast<size_t>(bytes));
    if (polarity.maskBlock == nullptr) return false;
    const auto address = reinterpret_cast<uintptr_t>(polarity.maskBlock);
    auto* const bytesOfMask = static_cast<uint8_t*>(polarity.maskBlock) + -address % kMaskAlignment;
    memset(bytesOfMask, 0, static_cast<size_t>(words * sizeof(uint16_t)));
    polarity.arrays.mask = reinterpret_cast<uint16_t*>(bytesOfMask);
    return true;
}

bool allocateArrays(Polarity& polarity, uint32_t pixels)
{
    const uint64_t bytes = Arrays::bytesFor(pixels);
    if (bytes > SIZE_MAX / 2) return false;
    polarity.arraysBlock = heapAlloc(static_cast<size_t>(bytes));
    if (polarity.arraysBlock == nullptr) return false;
    Arrays& arrays = polarity.arrays;
    arrays.shore = static_cast<uint32_t*>(polarity.arraysBlock);
    arrays.order = arrays.shore + pixels;
    arrays.history = reinterpret_cast<History*>(arrays.order + pixels);
    arrays.regions = reinterpret_cast<Region*>(arrays.history + pixels);
    return true;
}

Handle* newHandle(uint32_t width, uint32_t height, bool eight, const Parameters& parameters)
{
    auto* const handle = static_cast<Handle*>(heapAlloc(sizeof(Handle)));
    if (handle == nullptr) {
        ODX_LOG(Error, "ERROR: Cannot allocate MSER handle.\n");
        return nullptr;
    }
    *handle = {width, height, inside(width) * inside(height), strideOf(width), eight, parameters, {}, {}};
    if (width < 51) ODX_LOG(Error, "ERROR: image width must be greater than 50 for MSER.\n");
    if (height < 6) ODX_LOG(Error, "ERROR: image height must be greater than 5 for MSER.\n");
    if (width < 51 || height < 6) {
        freeHandle(handle);
        return nullptr;
    }
    checkParameters(handle);
    const uint64_t words = uint64_t{handle->stride} * height;
    if (!allocateMask(handle->plus, words) || !allocateMask(handle->minus, words) ||
        !allocateArrays(handle->plus, handle->pixels) || !allocateArrays(handle->minus, handle->pixels)) {
        ODX_LOG(Error, "ERROR: out of memory initializing MSER.\n");
        freeHandle(handle);
        return nullptr;
    }
    return handle;
}

uint32_t initialise(uint32_t width, uint32_t height, bool eight, const Parameters& parameters, void** mserHandle)
{
    *mserHandle = newHandle(static_cast<uint16_t>(width), static_cast<uint16_t>(height), eight, parameters);
    if (*mserHandle != nullptr) return 1;
    ODX_LOG(Error, "Failed to initialize MSER handle!\n");
    return 0;
}

// ---- extraction ----

struct Picture {
    const uint8_t* data;
    uint32_t width, height, stride;
};

// One polarity of one call.
struct Worker {
    const Polarity& polarity;
    const Picture& picture;
    const Parameters& parameters;
    bool eight, invert;
    uint32_t stride; // of the mask
    uint32_t regions;

    // Fills the mask, counts the pixels of each level, and floods them.
    void run()
    {
        uint32_t parts[4][kLevels] = {}; // so that equal neighbours are not counted in one place
        const uint32_t flip = invert ? 0xFF : 0, width = picture.width, last = picture.height - 1;
        uint16_t* const mask = polarity.arrays.mask;
        constexpr uint16_t kFrame = Flood<4>::kSeen;
        for (uint32_t y = 0; y <= last; ++y) {
            uint16_t* const row = mask + size_t{y} * stride;
            const uint8_t* const src = picture.data + size_t{y} * picture.stride;
            if (y == 0 || y == last) {
                for (uint32_t x = 0; x < width; ++x)
                    row[x] = kFrame;
                continue;
            }
            for (uint32_t x = 0; x < width; ++x)
                row[x] = static_cast<uint16_t>(src[x] ^ flip);
            row[0] = row[width - 1] = kFrame;
            for (uint32_t x = 1; x < width - 1; ++x)
                ++parts[x % 4][src[x]];
        }
        uint32_t counts[kLevels];
        for (uint32_t g = 0; g < kLevels; ++g)
            counts[g ^ flip] = parts[0][g] + parts[1][g] + parts[2][g] + parts[3][g];
        regions = eight ? flood<8>(counts) : flood<4>(counts);
    }

    static void* runThis(void* worker)
    {
        static_cast<Worker*>(worker)->run();
        return nullptr;
    }

private:
    template <uint32_t neighbours>
    uint32_t flood(const uint32_t* counts) const
    {
        return Flood<neighbours>(polarity.arrays, parameters, stride).run(stride + 1, counts);
    }
};

// Where the regions go. The counts of points have 16 or 32 bits; what an operation has not is null.
template <class Count>
struct Contours {
    uint32_t most, *count;
    Count* points;
    uint32_t mostPoints, *array;
    float* variation = nullptr;
    int32_t* polarity = nullptr;
    uint32_t *nodeId = nullptr, *nodeCounter = nullptr, *box = nullptr;
    bool split = false;
};

template <class Count>
class Writer
{
public:
    Writer(const Contours<Count>& contours, uint32_t stride)
        : to_(contours), stride_(stride), inverse_(((uint64_t{1} << 32) + stride / 32 - 1) / (stride / 32))
    {
    }

    void write(const Worker& worker)
    {
        const uint32_t before = count_;
        for (uint32_t i = 0; i < worker.regions; ++i) {
            const Region& region = worker.polarity.arrays.regions[i];
            needed_ += region.size;
            ++found_;
            fits_ &= found_ <= to_.most && needed_ <= to_.mostPoints;
            if (!fits_) continue;
            uint32_t* const points = to_.array + 2 * (needed_ - region.size);
            copy(worker.polarity.arrays.order + region.start, region.size, points);
            to_.points[count_] = static_cast<Count>(region.size);
            if (to_.variation != nullptr) {
                to_.variation[count_] = region.variation;
                to_.polarity[count_] = worker.invert ? -1 : 1;
                to_.nodeId[count_] = region.start;
                to_.nodeCounter[count_] = region.size;
            }
            if (to_.box != nullptr) bound(points, region.size, to_.box + 4 * size_t{count_});
            ++count_;
        }
        if (to_.split) to_.count[worker.invert ? 1 : 0] = count_ - before;
    }

    uint32_t finish() const
    {
        if (!to_.split) *to_.count = count_;
        if (fits_) return 1;
        if (found_ > to_.most) {
            ODX_LOG(Error,
                    "ERROR: maxContours = %i,  detected more MSER regions beyond this capacity. Please consider "
                    "increasing maxContours.\n",
                    static_cast<int>(to_.most));
        } else {
            ODX_LOG(Error,
                    "ERROR: %i contour points extracted. Exceeds the maximum number of %i points allowed in the "
                    "contour output buffers. Please increase pointsArraySize.\n",
                    static_cast<int>(needed_), static_cast<int>(to_.mostPoints));
        }
        return 0;
    }

private:
    // i / 32 is below 2^24 and stride / 32 at most 255, so the product's error stays below 1 / 255.
    void copy(const uint32_t* order, uint32_t size, uint32_t* points) const
    {
        for (uint32_t k = 0; k < size; ++k) {
            const uint32_t i = order[k], y = static_cast<uint32_t>((i / 32) * inverse_ >> 32);
            points[2 * size_t{k}] = i - y * stride_;
            points[2 * size_t{k} + 1] = y;
        }
    }

    static void bound(const uint32_t* points, uint32_t size, uint32_t* box)
    {
        uint32_t left = points[0], top = points[1], right = left, bottom = top;
        for (size_t k = 0; k < 2 * size_t{size}; k += 2) {
            left = std::min(left, points[k]);
            right = std::max(right, points[k]);
            top = std::min(top, points[k + 1]);
            bottom = std::max(bottom, points[k + 1]);
        }
        const uint32_t all[4] = {left, top, right, bottom};
        memcpy(box, all, sizeof all);
    }

    const Contours<Count> to_;
    const uint32_t stride_;
    const uint64_t inverse_;
    uint32_t count_ = 0, found_ = 0;
    uint64_t needed_ = 0;
    bool fits_ = true;
};

enum class Threads { one, two };

template <class Count>
uint32_t extract(void* mserHandle, const Picture& picture, const Contours<Count>& contours,
                 Threads threads = Threads::two)
{
    const Handle& handle = *static_cast<const Handle*>(mserHandle);
    if (picture.height > handle.height || picture.width > picture.stride || picture.width > handle.width) return 0;
    Parameters parameters = handle.parameters;
    if (picture.width != handle.width || picture.height != handle.height) {
        const float share =
            static_cast<float>(parameters.maxSize) / static_cast<float>(handle.width * handle.height);
        parameters.maxSize =
            static_cast<uint32_t>(share * static_cast<float>(picture.width) * static_cast<float>(picture.height));
    }
    const uint32_t stride = strideOf(picture.width);
    Worker plus = {handle.plus, picture, parameters, handle.eight, false, stride, 0},
           minus = {handle.minus, picture, parameters, handle.eight, true, stride, 0};
    if (inside(picture.width) != 0 && inside(picture.height) != 0) {
        platform::Thread thread;
        const bool beside = threads == Threads::two && platform::startThread(&thread, Worker::runThis, &minus);
        if (!beside) minus.run();
        plus.run();
        if (beside) platform::joinThread(thread);
    }
    Writer<Count> writer(contours, stride < 32 ? 32 : stride);
    writer.write(plus);
    writer.write(minus);
    return writer.finish();
}

} // namespace

#define ODX_PICTURE                            \
    {                                          \
        srcPtr, srcWidth, srcHeight, srcStride \
    }
#define ODX_CONTOURS maxContours, numContours, numPointsInContour, pointsArraySize, pointsArray
#define ODX_EXTENDED contourVariation, contourPolarity, contourNodeId, contourNodeCounter

extern "C" {

uint32_t odxMserInitC(unsigned int width, unsigned int height, int delta, unsigned int minArea,
                      unsigned int maxArea, float maxVariation, float minDiversity, void** mserHandle)
{
    return initialise(width, height, false, {minArea, maxArea, delta, maxVariation, minDiversity}, mserHandle);
}

uint32_t odxMserNN8InitC(unsigned int width, unsigned int height, int delta, unsigned int minArea,
                         unsigned int maxArea, float maxVariation, float minDiversity, void** mserHandle)
{
    return initialise(width, height, true, {minArea, maxArea, delta, maxVariation, minDiversity}, mserHandle);
}

void odxMserReleaseC(void* mserHandle)
{
    if (mserHandle != nullptr) freeHandle(static_cast<Handle*>(mserHandle));
}

void odxMseru8C(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                uint32_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray)
{
    extract<uint32_t>(mserHandle, ODX_PICTURE, {ODX_CONTOURS});
}

uint32_t odxMseru8_v2C(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                       unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                       uint16_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray)
{
    return extract<uint16_t>(mserHandle, ODX_PICTURE, {ODX_CONTOURS});
}

uint32_t odxMserNN8u8C(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                       unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                       uint16_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray)
{
    return extract<uint16_t>(mserHandle, ODX_PICTURE, {ODX_CONTOURS});
}

void odxMserExtu8C(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                   unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                   uint32_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray,
                   float* contourVariation, int32_t* contourPolarity, uint32_t* contourNodeId,
                   uint32_t* contourNodeCounter)
{
    extract<uint32_t>(mserHandle, ODX_PICTURE, {ODX_CONTOURS, ODX_EXTENDED});
}

uint32_t odxMserExtu8_v2C(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                          uint16_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray,
                          float* contourVariation, int32_t* contourPolarity, uint32_t* contourNodeId,
                          uint32_t* contourNodeCounter)
{
    return extract<uint16_t>(mserHandle, ODX_PICTURE, {ODX_CONTOURS, ODX_EXTENDED});
}

uint32_t odxMserExtNN8u8C(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                          uint16_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray,
                          float* contourVariation, int32_t* contourPolarity, uint32_t* contourNodeId,
                          uint32_t* contourNodeCounter)
{
    return extract<uint16_t>(mserHandle, ODX_PICTURE, {ODX_CONTOURS, ODX_EXTENDED});
}

uint32_t odxMserExtu8_v3C(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                          uint16_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray,
                          float* contourVariation, int32_t* contourPolarity, uint32_t* contourNodeId,
                          uint32_t* contourNodeCounter, uint32_t* contourBoundingBox)
{
    return extract<uint16_t>(mserHandle, ODX_PICTURE, {ODX_CONTOURS, ODX_EXTENDED, contourBoundingBox});
}

uint32_t odxMserSplitExtu8C(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                            uint16_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray,
                            float* contourVariation, int32_t* contourPolarity, uint32_t* contourNodeId,
                            uint32_t* contourNodeCounter)
{
    return extract<uint16_t>(mserHandle, ODX_PICTURE, {ODX_CONTOURS, ODX_EXTENDED, nullptr, true});
}

uint32_t odxMserSplitExtu8STC(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth,
                              unsigned int srcHeight, unsigned int srcStride, unsigned int maxContours,
                              uint32_t* numContours, uint16_t* numPointsInContour, unsigned int pointsArraySize,
                              uint32_t* pointsArray, float* contourVariation, int32_t* contourPolarity,
                              uint32_t* contourNodeId, uint32_t* contourNodeCounter)
{
    return extract<uint16_t>(mserHandle, ODX_PICTURE, {ODX_CONTOURS, ODX_EXTENDED, nullptr, true}, Threads::one);
}
}
