// What the AVX-512 column takes from AVX2, because `./run bench` measured it to be faster with vectors of 32
// bytes: work on patches and short rows, of which 64 bytes hold more than there is.
#ifndef ODX_ORLAN_NARROW_H
#define ODX_ORLAN_NARROW_H

#define ODX_NARROW_avx512(list)                                                                              \
    list(cutPatch) list(nearestDirectionf32) list(odxFlowSample) list(odxFlowGradients) list(odxFlowMoments) \
        list(odxFlowMismatch) list(odxMinMaxLocu8_v2)

#define ODX_NARROW_avx2(list)
#define ODX_NARROW_neon(list)

// What the target that is compiled takes.
#define ODX_NARROW_LIST(target, list) ODX_NARROW_##target(list)
#define ODX_NARROW_OF(target, list) ODX_NARROW_LIST(target, list)
#define ODX_NARROW(list) ODX_NARROW_OF(ODX_TARGET, list)

#endif
