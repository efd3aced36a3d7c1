// Whether the running processor supports the target that is being compiled.
#ifndef ODX_ORLAN_SIMD_TARGET_H
#define ODX_ORLAN_SIMD_TARGET_H

namespace odx::ODX_TARGET::simd
{

static bool supported()
{
#if defined(__AVX512F__) && !defined(ODX_EMULATE_AVX512)
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
           __builtin_cpu_supports("avx512bitalg") && __builtin_cpu_supports("avx512vnni") &&
           __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma");
#elif defined(__AVX2__)
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma");
#else
    return true; // the processor description is what tells about NEON
#endif
}

} // namespace odx::ODX_TARGET::simd

#endif
