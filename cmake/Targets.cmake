# The SIMD targets of the processor that is built for, and the compiler flags of each.
# A target listed here is also listed in src/orlan/targets.cpp, and has a backend in src/orlan/simd.
set(ONDRIX_SIMD_TARGETS "")
set(ONDRIX_ZIPS OFF)
# Of the library, and of what runs once a call rather than once a pixel.
set(ONDRIX_CODE_FLAGS "")
set(ONDRIX_CALL_FLAGS "")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
  set(ONDRIX_SIMD_TARGETS avx2 avx512)
  # The baseline has vectors that zip, but no interleaved loads and stores (src/cpu/zips.h).
  set(ONDRIX_ZIPS ON)
  set(ONDRIX_SIMD_FLAGS_avx2 -march=x86-64-v3)
  # GCC and Clang keep to 32-byte vectors of their own accord; the kernels ask for 64 bytes themselves. Where bytes
  # cannot be shuffled across them, and bits not be counted, the same kernels are faster as AVX2. Processors that can
  # do so have VNNI, too.
  set(ONDRIX_SIMD_FLAGS_avx512 -march=x86-64-v4 -mavx512vbmi -mavx512bitalg -mavx512vnni -mprefer-vector-width=512)
  # Tests of the AVX-512 kernels on processors that have none: slow, but every lane takes part.
  option(ONDRIX_EMULATE_AVX512 "Build the AVX-512 kernels on emulated intrinsics (SIMDe)" OFF)
  if(ONDRIX_EMULATE_AVX512)
    set(ONDRIX_SIMD_FLAGS_avx512 -march=x86-64-v3 -DODX_EMULATE_AVX512
      "SHELL:-isystem ${PROJECT_SOURCE_DIR}/tests/emulation")
  endif()
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  set(ONDRIX_SIMD_TARGETS neon)
  set(ONDRIX_SIMD_FLAGS_neon "")
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
  set(ONDRIX_SIMD_TARGETS neon)
  set(ONDRIX_SIMD_FLAGS_neon -mfpu=neon)
  # Every processor with NEON has the short instructions, which make the library a fifth smaller.
  set(ONDRIX_CODE_FLAGS -mthumb)
  set(ONDRIX_CALL_FLAGS $<$<CONFIG:Release>:-Os>)
endif()
