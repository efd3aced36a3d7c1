#include "entries/entries.h"

#include "ondrix/arithmetic.h"

namespace odx::test::arithmetic
{

// The stride of an image.
template <class T>
Argument strideFor(uint32_t channels = 1)
{
    return stride(kWidth * channels * sizeof(T), 8);
}

const Argument image = buffer(8, 16), columns = width(1, 1, 8);
const Argument policy = value(1, {2, 0xFFFFFFFF}, {0}), shift = value(3, {16, 0xFFFFFFFF}, {0, 15}),
               depth = value(3, {8, 0xFFFFFFFF}, {0, 7});
const std::string kPolicy = " && policy <= ONDRIX_OVERFLOW_SATURATE", kShift = " && shift <= 15",
                  kDepth = " && shift <= 7";

template <class S1, class S2, class D>
Entry two(const Operation& operation, const Arguments& takes = {}, const std::string& more = "")
{
    return {operation,
            "src1 && src2 && dst && srcWidth && srcHeight && (src1Stride >= " + row<S1>("srcWidth", 1) +
                ") && (src2Stride >= " + row<S2>("srcWidth", 1) + ") && (dstStride >= " + row<D>("srcWidth", 1) +
                ")" + more,
            Arguments{image, columns, height(), strideFor<S1>(), image, strideFor<S2>()} + takes +
                Arguments{image, strideFor<D>()}};
}

// A pointer among what an operation takes stands in the text.
template <class S, class D, uint32_t channels = 1>
Entry one(const Operation& operation, const Arguments& takes = {}, const std::string& more = "",
          const std::string& pointer = "")
{
    return {operation,
            "src" + pointer + " && dst && srcWidth && srcHeight && (srcStride >= " + row<S>("srcWidth", channels) +
                ") && (dstStride >= " + row<D>("srcWidth", channels) + ")" + more,
            Arguments{image, columns, height(), strideFor<S>(channels)} + takes +
                Arguments{image, strideFor<D>(channels)}};
}

template <class T, uint32_t channels>
Entry set(const Operation& operation)
{
    return {operation,
            std::string("dst") + (channels == 1 ? "" : " && value") +
                " && dstWidth && dstHeight && (dstStride >= " + row<T>("dstWidth", channels) +
                ") && (!mask || maskStride >= dstWidth)",
            {image, columns, height(), strideFor<T>(channels), channels == 1 ? value() : buffer(), optional(8, 16),
             strideFor<uint8_t>()}};
}

Entry combined(const Operation& operation, uint32_t planes)
{
    std::string text, strides;
    Arguments arguments = {image, columns, height(), strideFor<uint8_t>()};
    for (uint32_t i = 1; i <= planes; ++i) {
        text += "src" + std::to_string(i) + " && ";
        strides += "(src" + std::to_string(i) + "Stride >= srcWidth) && ";
        if (i > 1) arguments = arguments + Arguments{image, strideFor<uint8_t>()};
    }
    return {operation,
            text + "dst && srcWidth && srcHeight && " + strides + "(dstStride >= srcWidth*sizeof(uint8_t)*" +
                std::to_string(planes) + ")",
            arguments + Arguments{image, strideFor<uint8_t>(planes)}};
}

// Arguments and text for what an operation takes beyond its images.
#define TAKEN_nothing
#define TAKEN_policy , {policy}, kPolicy
#define TAKEN_shift , {shift}, kShift
#define TAKEN_depth , {depth}, kDepth
#define TAKEN_depthPolicy , {depth, policy}, kDepth + kPolicy
#define TAKEN_weights , Arguments(3, value())
#define TAKEN_value , Arguments(1, value())
#define TAKEN_valueShift , {value(), shift}, kShift
#define TAKEN_table , {buffer()}, "", " && table"

Entries entries()
{
    const Argument channels = value(3, {0, 1, 17}, {2, 16});
    const std::string pixels = "(srcStride >= srcWidth*sizeof(uint8_t)*channels) && (dstStride >= srcWidth)",
                      layout = kImages + " && channels >= 2 && channels <= ";
    return {
#define TWO(name, S1, S2, D, takes, ...) two<S1, S2, D>(OP(name) TAKEN_##takes),
#define ONE(name, S, D, takes, ...) one<S, D>(OP(name) TAKEN_##takes),
#define TO_VALUES(name, T, channels) one<T, T, channels>(OP(name), {buffer()}, "", " && value"),
#define SET(name, T, channels) set<T, channels>(OP(name)),
#include "operations/arithmetic.def"
        combined(OP(odxChannelCombine2Planesu8), 2),
        combined(OP(odxChannelCombine3Planesu8), 3),
        combined(OP(odxChannelCombine4Planesu8), 4),
        ENTRY(odxImageDiffu8, "src1 && src2 && dst && srcWidth && srcHeight",
              {image, columns, height(), image, image}),
        ENTRY(odxChannelExtractu8, layout + "4 && position < channels && " + pixels,
              Arguments{image, columns, height(), strideFor<uint8_t>(3), value(3, {0, 1, 5}, {4}),
                        value(1, {3, 7, 11, 0xFFFFFFFF}, {0, 2, 4, 6, 8, 9, 10}), image, strideFor<uint8_t>()}
                  .refusing({{{4, 4}, {5, 8}}, {{4, 2}, {5, 8}}, {{4, 2}, {5, 2}}, {{4, 2}, {5, 6}}})),
        ENTRY(odxDeinterleaveu8, layout + "16 && " + pixels,
              {image, columns, height(), strideFor<uint8_t>(3), channels, image, strideFor<uint8_t>()}),
        ENTRY(odxInterleaveu8,
              layout + "16 && (srcStride >= srcWidth) && (dstStride >= srcWidth*sizeof(uint8_t)*channels)",
              {image, columns, height(), strideFor<uint8_t>(), channels, image, strideFor<uint8_t>(3)}),
        ENTRY(odxAverageu8, "src && average && srcWidth && srcHeight && (srcStride >= srcWidth)",
              {image, columns, height(), strideFor<uint8_t>(), buffer()}),
        ENTRY(odxAverages32, "src && average && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int32_t))",
              {image, columns, height(), strideFor<int32_t>(), buffer()}),
        ENTRY(odxCrossProduct3x1f32, "src1 && src2 && dst", Arguments(3, image).never()),
    };
}

} // namespace odx::test::arithmetic
