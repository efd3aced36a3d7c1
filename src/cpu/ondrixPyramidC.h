// Reference implementations: image pyramids.
#ifndef ODX_CPU_ONDRIX_PYRAMID_C_H
#define ODX_CPU_ONDRIX_PYRAMID_C_H

#include "ondrix/pyramids.h"

extern "C" {
decltype(odxPyramidAllocate) odxPyramidAllocateC;
decltype(odxPyramidAllocate_v2) odxPyramidAllocate_v2C;
decltype(odxPyramidAllocate_v3) odxPyramidAllocate_v3C;
decltype(odxPyramidDelete) odxPyramidDeleteC;
decltype(odxPyramidDelete_v2) odxPyramidDelete_v2C;
decltype(odxPyramidCreateu8) odxPyramidCreateu8C;
decltype(odxPyramidCreatef32) odxPyramidCreatef32C;
decltype(odxPyramidCreateu8_v2) odxPyramidCreateu8_v2C;
decltype(odxPyramidCreatef32_v2) odxPyramidCreatef32_v2C;
decltype(odxPyramidCreateu8_v3) odxPyramidCreateu8_v3C;
decltype(odxPyramidSobelGradientCreatei16) odxPyramidSobelGradientCreatei16C;
decltype(odxPyramidSobelGradientCreatei8) odxPyramidSobelGradientCreatei8C;
decltype(odxPyramidSobelGradientCreatef32) odxPyramidSobelGradientCreatef32C;
}

#endif
