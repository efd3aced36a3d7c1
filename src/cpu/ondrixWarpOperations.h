// The operations of the warps, defined once and included by both columns. No guard: ODX_WARP_COLUMN(name) gives
// each its name, and warpBy<Rule, C>(path, source, target, border), clippedBy<Rule, C>(..., dstBorder) and
// warpPlanes<Rule>(path, sources, targets, border) do the work.

void ODX_WARP_COLUMN(odxWarpPerspectiveu8_v2)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                              unsigned srcStride, uint8_t* dst, unsigned dstWidth,
                                              unsigned dstHeight, unsigned dstStride,
                                              const float* projectionMatrix)
{
    warpBy<warp::Bilinear, 1>(warp::Projective{projectionMatrix},
                              warp::Source{src, srcWidth, srcHeight, srcStride},
                              warp::Target{dst, dstWidth, dstHeight, dstStride}, warp::kZeros);
}

void ODX_WARP_COLUMN(odxWarpPerspectiveu8)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight, uint8_t* dst,
                                           unsigned dstWidth, unsigned dstHeight, const float* projectionMatrix)
{
    ODX_WARP_COLUMN(odxWarpPerspectiveu8_v2)
    (src, srcWidth, srcHeight, srcWidth, dst, dstWidth, dstHeight, dstWidth, projectionMatrix);
}

odxStatus ODX_WARP_COLUMN(odxWarpPerspectiveu8_v4)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                                   unsigned srcStride, uint8_t* dst, unsigned dstWidth,
                                                   unsigned dstHeight, unsigned dstStride,
                                                   const float* projectionMatrix,
                                                   odxInterpolationType interpolation, odxBorderType borderType,
                                                   uint32_t borderValue)
{
    if (interpolation > ONDRIX_INTERPOLATION_AREA) return ONDRIX_BAD_PARAMETER;
    const warp::Projective path{projectionMatrix};
    const warp::Source source{src, srcWidth, srcHeight, srcStride};
    const warp::Target target{dst, dstWidth, dstHeight, dstStride};
    const warp::Border border = warp::borderOf(borderType, borderValue);
    if (interpolation == ONDRIX_INTERPOLATION_NEAREST) {
        warpBy<warp::Nearest, 1>(path, source, target, border);
    } else {
        warpBy<warp::Bilinear, 1>(path, source, target, border);
    }
    return ONDRIX_SUCCESS;
}

odxStatus ODX_WARP_COLUMN(odxWarpPerspectiveu8_v3)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                                   unsigned srcStride, uint8_t* dst, unsigned dstWidth,
                                                   unsigned dstHeight, unsigned dstStride,
                                                   const float* projectionMatrix,
                                                   odxInterpolationType interpolation)
{
    return ODX_WARP_COLUMN(odxWarpPerspectiveu8_v4)(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight,
                                                    dstStride, projectionMatrix, interpolation,
                                                    ONDRIX_BORDER_UNDEFINED, 0);
}

void ODX_WARP_COLUMN(odx3ChannelWarpPerspectiveu8_v2)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                                      unsigned srcStride, uint8_t* dst, unsigned dstWidth,
                                                      unsigned dstHeight, unsigned dstStride,
                                                      const float* projectionMatrix)
{
    warpBy<warp::Bilinear, 3>(warp::Projective{projectionMatrix},
                              warp::Source{src, srcWidth, srcHeight, srcStride},
                              warp::Target{dst, dstWidth, dstHeight, dstStride}, warp::kZeros);
}

void ODX_WARP_COLUMN(odx3ChannelWarpPerspectiveu8)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                                   uint8_t* dst, unsigned dstWidth, unsigned dstHeight,
                                                   const float* projectionMatrix)
{
    ODX_WARP_COLUMN(odx3ChannelWarpPerspectiveu8_v2)
    (src, srcWidth, srcHeight, 3 * srcWidth, dst, dstWidth, dstHeight, 3 * dstWidth, projectionMatrix);
}

odxStatus ODX_WARP_COLUMN(odx2PlaneWarpPerspectiveu8)(const uint8_t* src1, const uint8_t* src2, unsigned srcWidth,
                                                      unsigned srcHeight, unsigned src1Stride, unsigned src2Stride,
                                                      uint8_t* dst1, uint8_t* dst2, unsigned dstWidth,
                                                      unsigned dstHeight, unsigned dst1Stride, unsigned dst2Stride,
                                                      const float* projectionMatrix)
{
    const warp::Source sources[] = {{src1, srcWidth, srcHeight, src1Stride},
                                    {src2, srcWidth, srcHeight, src2Stride}};
    const warp::Target targets[] = {{dst1, dstWidth, dstHeight, dst1Stride},
                                    {dst2, dstWidth, dstHeight, dst2Stride}};
    warpPlanes<warp::Bilinear>(warp::Projective{projectionMatrix}, sources, targets, warp::kZeros);
    return ONDRIX_SUCCESS;
}

odxStatus ODX_WARP_COLUMN(odxTransformAffineClippedu8_v3)(
    const uint8_t* src, unsigned srcWidth, unsigned srcHeight, unsigned srcStride, const float* affineMatrix,
    uint8_t* dst, unsigned dstWidth, unsigned dstHeight, unsigned dstStride, uint32_t* dstBorder,
    odxInterpolationType interpolation, odxBorderType borderType, uint32_t borderValue)
{
    if (interpolation > ONDRIX_INTERPOLATION_AREA) return ONDRIX_BAD_PARAMETER;
    const warp::Affine path{affineMatrix};
    const warp::Source source{src, srcWidth, srcHeight, srcStride};
    const warp::Target target{dst, dstWidth, dstHeight, dstStride};
    const warp::Border border = borderType == ONDRIX_BORDER_UNDEFINED   ? warp::kLeft
                                : borderType == ONDRIX_BORDER_REPLICATE ? warp::Border{warp::Outside::clamp, 0}
                                                                        : warp::borderOf(borderType, borderValue);
    if (interpolation == ONDRIX_INTERPOLATION_NEAREST) {
        clippedBy<warp::Nearest, 1>(path, source, target, border, dstBorder);
    } else {
        clippedBy<warp::FixedBilinear, 1>(path, source, target, border, dstBorder);
    }
    return ONDRIX_SUCCESS;
}

odxStatus ODX_WARP_COLUMN(odxTransformAffineClippedu8)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                                       unsigned srcStride, const float* affineMatrix, uint8_t* dst,
                                                       unsigned dstWidth, unsigned dstHeight, unsigned dstStride,
                                                       uint32_t* dstBorder, odxInterpolationType interpolation)
{
    return ODX_WARP_COLUMN(odxTransformAffineClippedu8_v3)(src, srcWidth, srcHeight, srcStride, affineMatrix, dst,
                                                           dstWidth, dstHeight, dstStride, dstBorder,
                                                           interpolation, ONDRIX_BORDER_UNDEFINED, 0);
}

void ODX_WARP_COLUMN(odxRemapRGBA8888NNu8)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                           unsigned srcStride, uint8_t* dst, unsigned dstWidth, unsigned dstHeight,
                                           unsigned dstStride, const float* mapX, const float* mapY,
                                           unsigned mapStride)
{
    warpBy<warp::Nearest, 4>(warp::Maps{mapX, mapY, mapStride}, warp::Source{src, srcWidth, srcHeight, srcStride},
                             warp::Target{dst, dstWidth, dstHeight, dstStride}, warp::kZeros);
}

void ODX_WARP_COLUMN(odxRemapRGBA8888BLu8)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                           unsigned srcStride, uint8_t* dst, unsigned dstWidth, unsigned dstHeight,
                                           unsigned dstStride, const float* mapX, const float* mapY,
                                           unsigned mapStride)
{
    warpBy<warp::Bilinear, 4>(warp::Maps{mapX, mapY, mapStride}, warp::Source{src, srcWidth, srcHeight, srcStride},
                              warp::Target{dst, dstWidth, dstHeight, dstStride}, warp::kZeros);
}

odxStatus ODX_WARP_COLUMN(odxRemapu8_v2)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                         unsigned srcStride, uint8_t* dst, unsigned dstWidth, unsigned dstHeight,
                                         unsigned dstStride, const float* mapX, const float* mapY,
                                         unsigned mapStride, odxInterpolationType interpolation,
                                         odxBorderType borderType, uint32_t borderValue)
{
    if (interpolation > ONDRIX_INTERPOLATION_AREA) return ONDRIX_BAD_PARAMETER;
    const warp::Maps path{mapX, mapY, mapStride};
    const warp::Source source{src, srcWidth, srcHeight, srcStride};
    const warp::Target target{dst, dstWidth, dstHeight, dstStride};
    const warp::Border border = borderType == ONDRIX_BORDER_REPLICATE ? warp::Border{warp::Outside::clamp, 0}
                                                                      : warp::borderOf(borderType, borderValue);
    if (interpolation == ONDRIX_INTERPOLATION_NEAREST) {
        warpBy<warp::Nearest, 1>(path, source, target, border);
    } else {
        warpBy<warp::Bilinear, 1>(path, source, target, border);
    }
    return ONDRIX_SUCCESS;
}

odxStatus ODX_WARP_COLUMN(odxRemapu8)(const uint8_t* src, unsigned srcWidth, unsigned srcHeight,
                                      unsigned srcStride, uint8_t* dst, unsigned dstWidth, unsigned dstHeight,
                                      unsigned dstStride, const float* mapX, const float* mapY, unsigned mapStride,
                                      odxInterpolationType interpolation)
{
    return ODX_WARP_COLUMN(odxRemapu8_v2)(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride,
                                          mapX, mapY, mapStride, interpolation, ONDRIX_BORDER_UNDEFINED, 0);
}
