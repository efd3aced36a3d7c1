// Reference implementations of optical flow, and the inner loops that they reach through pointers.
#ifndef ODX_CPU_ONDRIX_OPTICAL_FLOW_C_H
#define ODX_CPU_ONDRIX_OPTICAL_FLOW_C_H

#include "frame/helpers.h"
#include "ondrix/opticalFlow.h"

namespace odx
{

// Samples between the pixels of a window. `bytes` has the pixels in rows of `pitch`, one more than there are
// samples in each, and one more row. Samples are made for all of `count` elements, a multiple of kFlowSums; those
// at the ends of rows and behind the last one have no meaning.
struct FlowSamples {
    const uint8_t* bytes;
    uint32_t pitch, count;
    float fx, fy;
    float* pixels; // room for as many values between them
};

// The window in image 1: samples and gradients in rows of `pitch`, with gradients of 0 in the last column of each
// row and behind the last one, up to `count`.
struct FlowWindow {
    uint32_t width, height, pitch, count;
    float *samples, *dx, *dy;
};

constexpr uint32_t kFlowSums = 16;
// Loops may read and write so many floats, or bytes, beyond what they work on.
constexpr uint32_t kFlowSlack = 64;

} // namespace odx

extern "C" {
decltype(odxTrackLKOpticalFlowu8) odxTrackLKOpticalFlowu8C;
decltype(odxTrackLKOpticalFlowf32) odxTrackLKOpticalFlowf32C;
decltype(odxTrackLKOpticalFlowu8_v2) odxTrackLKOpticalFlowu8_v2C;
decltype(odxTrackLKOpticalFlowu8_v3) odxTrackLKOpticalFlowu8_v3C;

void odxFlowSampleC(const odx::FlowSamples* at, float* samples);
// From samples with a margin of one on each side, in rows of the window's width + 3.
void odxFlowGradientsC(const float* margin, const odx::FlowWindow* window);
// sums: of dx * dx, dx * dy, dy * dy.
void odxFlowMomentsC(const odx::FlowWindow* window, float* sums);
// sums: of the differences to samples, times dx and times dy.
void odxFlowMismatchC(const odx::FlowSamples* at, const odx::FlowWindow* window, float* sums);
ODX_HELPER_POINTER(odxFlowSample);
ODX_HELPER_POINTER(odxFlowGradients);
ODX_HELPER_POINTER(odxFlowMoments);
ODX_HELPER_POINTER(odxFlowMismatch);
}

#endif
