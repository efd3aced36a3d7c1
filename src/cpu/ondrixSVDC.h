// Reference implementations: matrix products, linear solvers, singular value decomposition.
#ifndef ODX_CPU_ONDRIX_SVD_C_H
#define ODX_CPU_ONDRIX_SVD_C_H

#include "ondrix/solvers.h"

extern "C" {
decltype(odxMatrixMultiplyf32) odxMatrixMultiplyf32C;
decltype(odxMatrixMultiplys8s32) odxMatrixMultiplys8s32C;
decltype(odxSolveCholeskyf32) odxSolveCholeskyf32C;
decltype(odxSolveLDLf32) odxSolveLDLf32C;
decltype(odxSolveLUf32) odxSolveLUf32C;
decltype(odxSolvef32) odxSolvef32C;
decltype(odxSVDf32) odxSVDf32C;
}

#endif
