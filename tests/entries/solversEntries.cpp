#include "entries/entries.h"

#include "ondrix/solvers.h"

namespace odx::test::solvers
{

Entries entries()
{
    const auto product = [](uint32_t size, const Argument& depth) {
        const Arguments second = {buffer(8, 16), value(kWidth, {0}), stride(size * kWidth, 8)},
                        dst = {buffer(8, 16), stride(4 * kWidth, 8)};
        return Arguments{buffer(8, 16), depth, height(), stride(size * kWidth, 8)} + second + dst;
    };
    Argument bytes = width();
    bytes.refused.push_back(131073);
    // The stride of rows without padding is the default, and the longest sum is accepted with it.
    const std::string sizes = "src1 && src2 && dst && src1Width && src1Height && src2Width && ";
    const auto buffers = [](size_t count) { return Arguments(count, buffer(8, 16)); };
    const Arguments system = (buffers(3) + value(kWidth, {}, {0}) + buffer(8, 16)).pixels(0);
    const Arguments decomposition = Arguments{buffer(8, 16), height(), width()} + buffers(5);
    return {
        ENTRY(odxMatrixMultiplyf32,
              sizes + "(src1Stride >= src1Width*sizeof(float32_t)) && (src2Stride >= src2Width*sizeof(float32_t)) "
                      "&& (dstStride >= src2Width*sizeof(float32_t))",
              product(4, width())),
        ENTRY(odxMatrixMultiplys8s32,
              sizes + "(src1Stride >= src1Width) && (src2Stride >= src2Width) && (dstStride >= "
                      "src2Width*sizeof(int32_t)) && src1Width <= 131072",
              product(1, bytes)),
        ENTRY(odxSolveCholeskyf32, "", system),
        ENTRY(odxSolveLDLf32, "", system),
        ENTRY(odxSolveLUf32, "", (buffers(2) + value(kWidth, {}, {0, -1}) + buffer() + buffer(8, 16)).pixels(0)),
        ENTRY(odxSolvef32, "A && b && x && numRows && numCols && numRows >= numCols",
              Arguments{buffer(8, 16), value(kHeight, {0, kWidth + 1}, {kWidth}), value(kWidth, {0}),
                        buffer(8, 16), buffer(8, 16)}
                  .pixels(0)),
        ENTRY(odxSVDf32,
              "(A != NULL) && (m > 0) && (n > 0) && (w != NULL) && (U != NULL) && (Vt != NULL) && (tmpU != NULL) "
              "&& (tmpV != NULL)",
              decomposition),
    };
}

} // namespace odx::test::solvers
