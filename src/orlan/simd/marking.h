// Numbers of interleaved channels, and pixels that a mask marks.
//
//   Vector<T>                      the vector with elements of type T
//   Pattern<T, channels>(value)    as many vectors as whole pixels fill, of pixels that are `value`
//   MarkedPixels<T, channels>(value).set(q, p, marked)
//                                  kBytes pixels at q: the value where the byte of `marked` is 255, those at p
//                                  where it is 0; T has one or four bytes
#ifndef ODX_ORLAN_SIMD_MARKING_H
#define ODX_ORLAN_SIMD_MARKING_H

#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET::simd
{

template <class T>
struct VectorOf;
template <>
struct VectorOf<uint8_t> {
    typedef u8v Type;
};
template <>
struct VectorOf<int8_t> {
    typedef s8v Type;
};
template <>
struct VectorOf<uint16_t> {
    typedef u16v Type;
};
template <>
struct VectorOf<int16_t> {
    typedef s16v Type;
};
template <>
struct VectorOf<uint32_t> {
    typedef u32v Type;
};
template <>
struct VectorOf<int32_t> {
    typedef s32v Type;
};
template <>
struct VectorOf<float> {
    typedef f32v Type;
};
template <class T>
using Vector = typename VectorOf<T>::Type;

// Vectors that pixels of so many channels fill, and pixels that fill them.
template <class T, uint32_t channels>
struct Pattern {
    static constexpr uint32_t kVectors = channels == 3 ? 3 : 1;
    static constexpr uint32_t kPixels = kVectors * kBytes / sizeof(T) / channels;
    Vector<T> vector[kVectors];

    ODX_MEMBER explicit Pattern(const T* value)
    {
        T repeated[kVectors * kBytes / sizeof(T)];
        for (uint32_t i = 0; i < kPixels; ++i)
            memcpy(repeated + channels * i, value, channels * sizeof(T));
        memcpy(vector, repeated, sizeof vector);
    }
};

// By way of a byte of the mask for every byte of the pixels.
template <uint32_t bytes>
ODX_INLINE void spreadMask(uint8_t* spread, u8v marked)
{
    if constexpr (bytes == 1) {
        store(spread, marked);
    } else if constexpr (bytes == 3) {
        store3(spread, marked, marked, marked);
    } else {
        store4(spread, marked, marked, marked, marked);
    }
}

template <class T, uint32_t channels>
struct MarkedPixels : Pattern<T, channels> {
    using Pattern<T, channels>::Pattern;

    ODX_MEMBER void set(T* q, const T* p, u8v marked) const
    {
        alignas(kBytes) uint8_t ofChannels[channels * kBytes], ofBytes[4 * kBytes];
        spreadMask<channels>(ofChannels, marked);
        for (uint32_t i = 0; i < channels; ++i) {
            uint8_t* const bytes = sizeof(T) == 1 ? ofChannels + kBytes * i : ofBytes;
            if constexpr (sizeof(T) == 4) spreadMask<4>(ofBytes, load<u8v>(ofChannels + kBytes * i));
            for (uint32_t j = 0; j < sizeof(T); ++j) {
                const size_t at = kBytes * (sizeof(T) * i + j);
                const u8v mask = load<u8v>(bytes + kBytes * j), old = load<u8v>((const char*)p + at),
                          value = (u8v)this->vector[(sizeof(T) * i + j) % this->kVectors];
                store((char*)q + at, (value & mask) | (old & ~mask));
            }
        }
    }
};

#if defined(__ARM_NEON)

// Compilers copy the mask for each use.
ODX_INLINE void setMarked(uint8x16_t& v, u8v value, u8v marked)
{
#if defined(__aarch64__)
    asm("bit %0.16b, %1.16b, %2.16b" : "+w"(v) : "w"(value), "w"(marked));
#else
    asm("vbit %q0, %q1, %q2" : "+w"(v) : "w"(value), "w"(marked));
#endif
}

// A channel at a time, where loads and stores take pixels apart.
template <uint32_t channels>
struct MarkedPixels<uint8_t, channels> {
    u8v value[channels];

    ODX_MEMBER explicit MarkedPixels(const uint8_t* v)
    {
        for (uint32_t c = 0; c < channels; ++c)
            value[c] = u8v{} + v[c];
    }
    ODX_MEMBER void set(uint8_t* q, const uint8_t* p, u8v marked) const
    {
        const auto setAll = [&](auto v) __attribute__((always_inline))
        {
            for (uint32_t c = 0; c < channels; ++c)
                setMarked(v.val[c], value[c], marked);
            return v;
        };
        if constexpr (channels == 3) {
            vst3q_u8(q, setAll(vld3q_u8(p)));
        } else {
            vst4q_u8(q, setAll(vld4q_u8(p)));
        }
    }
};

template <uint32_t channels>
struct MarkedWords {
    u8v value[channels];

    ODX_MEMBER explicit MarkedWords(const void* v)
    {
        uint32_t words[channels];
        memcpy(words, v, sizeof words);
        for (uint32_t c = 0; c < channels; ++c)
            value[c] = (u8v)vdupq_n_u32(words[c]);
    }
    ODX_MEMBER void setWord(uint32x4_t& v, uint32_t channel, u8v marked) const
    {
        uint8x16_t bytes = (uint8x16_t)v;
        setMarked(bytes, value[channel], marked);
        v = (uint32x4_t)bytes;
    }
    ODX_MEMBER void setFour(uint32_t* q, const uint32_t* p, u8v marked) const
    {
        const auto setAll = [&](auto v) __attribute__((always_inline))
        {
            for (uint32_t c = 0; c < channels; ++c)
                setWord(v.val[c], c, marked);
            return v;
        };
        if constexpr (channels == 1) {
            uint32x4_t v = vld1q_u32(p);
            setWord(v, 0, marked);
            vst1q_u32(q, v);
        } else if constexpr (channels == 3) {
            vst3q_u32(q, setAll(vld3q_u32(p)));
        } else {
            vst4q_u32(q, setAll(vld4q_u32(p)));
        }
    }
    ODX_MEMBER void set(void* q, const void* p, u8v marked) const
    {
        const u8x2 twice = zip<1>(marked, marked), low = zip<2>(twice.a, twice.a), high = zip<2>(twice.b, twice.b);
        uint32_t* const out = (uint32_t*)q;
        const uint32_t* const in = (const uint32_t*)p;
        setFour(out, in, low.a);
        setFour(out + 4 * channels, in + 4 * channels, low.b);
        setFour(out + 8 * channels, in + 8 * channels, high.a);
        setFour(out + 12 * channels, in + 12 * channels, high.b);
    }
};
template <uint32_t channels>
struct MarkedPixels<int32_t, channels> : MarkedWords<channels> {
    using MarkedWords<channels>::MarkedWords;
};
template <uint32_t channels>
struct MarkedPixels<float, channels> : MarkedWords<channels> {
    using MarkedWords<channels>::MarkedWords;
};

#endif

} // namespace odx::ODX_TARGET::simd

#endif
