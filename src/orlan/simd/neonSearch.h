// Tables, tests of whole vectors, and the places of what was found.
#ifndef ODX_ORLAN_SIMD_NEON_SEARCH_H
#define ODX_ORLAN_SIMD_NEON_SEARCH_H

namespace odx::ODX_TARGET::simd
{

// Tables beyond the range of an index leave what earlier ones found.
template <uint32_t size>
struct ByteTable {
#if defined(__aarch64__)
    uint8x16x4_t part[size / 64];

    ODX_MEMBER explicit ByteTable(const uint8_t* table)
    {
        for (uint32_t i = 0; i < size / 64; ++i) {
            const uint8_t* const p = table + 64 * i;
            part[i] = {{vld1q_u8(p), vld1q_u8(p + 16), vld1q_u8(p + 32), vld1q_u8(p + 48)}};
        }
    }
    ODX_MEMBER u8v operator()(u8v v) const
    {
        uint8x16_t found = vqtbl4q_u8(part[0], (uint8x16_t)v);
        for (uint32_t i = 1; i < size / 64; ++i)
            found = vqtbx4q_u8(found, part[i], (uint8x16_t)(v - (uint8_t)(64 * i)));
        return (u8v)found;
    }
#else
    const uint8_t* table;

    ODX_MEMBER explicit ByteTable(const uint8_t* t) : table(t) {}
    ODX_MEMBER u8v operator()(u8v v) const
    {
        uint8x8_t low = vdup_n_u8(0), high = low;
        for (uint32_t first = 0; first < size; first += 32) {
            const uint8_t* const p = table + first;
            const uint8x8x4_t part = {{vld1_u8(p), vld1_u8(p + 8), vld1_u8(p + 16), vld1_u8(p + 24)}};
            const uint8x16_t index = (uint8x16_t)(v - (uint8_t)first);
            low = vtbx4_u8(low, part, vget_low_u8(index));
            high = vtbx4_u8(high, part, vget_high_u8(index));
        }
        return (u8v)vcombine_u8(low, high);
    }
#endif
};

#if defined(__aarch64__)
template <uint32_t size>
ODX_INLINE u8x4 lookUpFour(const ByteTable<size>& table, const u8x4& v)
{
    return {table(v.a), table(v.b), table(v.c), table(v.d)};
}
constexpr uint32_t kLookedUp = kBytes;
ODX_INLINE void lookUp(const ByteTable<256>& table, const uint8_t* in, uint8_t* out)
{
    store(out, table(load<u8v>(in)));
}
#else
// The registers hold 32 bytes of the table, and of four vectors the places from there on and what was found.
struct Found {
    uint8x16_t place;
    uint8x8_t low, high;

    // The first part's; vtbl gives 0 for places beyond it.
    ODX_MEMBER Found(u8v v, const uint8x8x4_t& part) : place((uint8x16_t)v)
    {
        low = vtbl4_u8(part, vget_low_u8(place));
        high = vtbl4_u8(part, vget_high_u8(place));
    }
    ODX_MEMBER void look(const uint8x8x4_t& part)
    {
        place = vsubq_u8(place, vdupq_n_u8(32));
        low = vtbx4_u8(low, part, vget_low_u8(place));
        high = vtbx4_u8(high, part, vget_high_u8(place));
    }
    ODX_MEMBER u8v all() const { return (u8v)vcombine_u8(low, high); }
};
ODX_INLINE uint8x8x4_t tablePart(const uint8_t* p)
{
    const uint8x16_t lower = vld1q_u8(p), upper = vld1q_u8(p + 16);
    return {{vget_low_u8(lower), vget_high_u8(lower), vget_low_u8(upper), vget_high_u8(upper)}};
}
template <uint32_t parts>
ODX_INLINE void lookUpParts(const uint8_t* table, Found& a, Found& b, Found& c, Found& d)
{
    // One part after the other: there is no room for two.
    asm volatile(""
                 : "+r"(table), "+w"(a.place), "+w"(a.low), "+w"(a.high), "+w"(b.place), "+w"(b.low), "+w"(b.high),
                   "+w"(c.place), "+w"(c.low), "+w"(c.high), "+w"(d.place), "+w"(d.low), "+w"(d.high));
    const uint8x8x4_t part = tablePart(table);
    a.look(part), b.look(part), c.look(part), d.look(part);
    if constexpr (parts > 1) lookUpParts<parts - 1>(table + 32, a, b, c, d);
}
template <uint32_t size>
ODX_INLINE u8x4 lookUpFour(const ByteTable<size>& table, const u8x4& v)
{
    const uint8x8x4_t part = tablePart(table.table);
    Found a(v.a, part), b(v.b, part), c(v.c, part), d(v.d, part);
    lookUpParts<size / 32 - 1>(table.table + 32, a, b, c, d);
    return {a.all(), b.all(), c.all(), d.all()};
}
constexpr uint32_t kLookedUp = 4 * kBytes;
ODX_INLINE void lookUp(const ByteTable<256>& table, const uint8_t* in, uint8_t* out)
{
    const u8x4 found =
        lookUpFour(table, {load<u8v>(in), load<u8v>(in + 16), load<u8v>(in + 32), load<u8v>(in + 48)});
    store(out, found.a);
    store(out + 16, found.b);
    store(out + 32, found.c);
    store(out + 48, found.d);
}
#endif

// 32-bit NEON has no reduction of whole vectors, but one of neighbours.
ODX_INLINE uint8_t highest(u8v v)
{
#if defined(__aarch64__)
    return vmaxvq_u8((uint8x16_t)v);
#else
    uint8x8_t half = vpmax_u8(vget_low_u8((uint8x16_t)v), vget_high_u8((uint8x16_t)v));
    half = vpmax_u8(half, half);
    half = vpmax_u8(half, half);
    return vget_lane_u8(vpmax_u8(half, half), 0);
#endif
}

ODX_INLINE bool any(u8v v)
{
#if defined(__aarch64__)
    return vmaxvq_u32((uint32x4_t)v) != 0;
#else
    const uint64x2_t halves = (uint64x2_t)v;
    return vget_lane_u64(vorr_u64(vget_low_u64(halves), vget_high_u64(halves)), 0) != 0;
#endif
}

ODX_INLINE u8v loadOnce(const uint8_t* p)
{
    return load<u8v>(p);
}

ODX_INLINE u8v loadHalves(const uint8_t* p, const uint8_t* q)
{
    return (u8v)vcombine_u8(vld1_u8(p), vld1_u8(q));
}

ODX_INLINE u8v repeat(uint64_t low, uint64_t high)
{
    return (u8v)vcombine_u64(vcreate_u64(low), vcreate_u64(high));
}

template <int n>
ODX_INLINE u8v rotate(u8v v)
{
    return (u8v)vextq_u8((uint8x16_t)v, (uint8x16_t)v, n);
}

// A test of a whole vector takes several instructions, and a way from one register file to the other.
constexpr bool kGroupsVectors = true;
ODX_INLINE uint64_t anyAbove(u8v a, u8v b, u8v c, u8v d, u8v limit)
{
#if defined(__aarch64__)
    const uint8x16_t ab = vpmaxq_u8((uint8x16_t)a, (uint8x16_t)b), cd = vpmaxq_u8((uint8x16_t)c, (uint8x16_t)d),
                     abcd = vpmaxq_u8(ab, cd);
    const uint8x8_t highest = vget_low_u8(vpmaxq_u8(abcd, abcd));
#else
    const auto half = [](u8v v) { return vpmax_u8(vget_low_u8((uint8x16_t)v), vget_high_u8((uint8x16_t)v)); };
    const uint8x8_t highest = vpmax_u8(vpmax_u8(half(a), half(b)), vpmax_u8(half(c), half(d)));
#endif
    return vget_lane_u64(vreinterpret_u64_u8(vqsub_u8(highest, vget_low_u8((uint8x16_t)limit))), 0);
}

ODX_INLINE void storePoints(uint32_t* p, const uint8_t* bytes, uint32_t x, uint32_t y)
{
    const uint16x8_t eight = vmovl_u8(vld1_u8(bytes));
    const uint32x4_t first = vdupq_n_u32(x);
    const uint32x4x2_t low = {{vaddw_u16(first, vget_low_u16(eight)), vdupq_n_u32(y)}},
                       high = {{vaddw_u16(first, vget_high_u16(eight)), vdupq_n_u32(y)}};
    vst2q_u32(p, low);
    vst2q_u32(p + 8, high);
}

// Each byte keeps the bit of its place among eight, and neighbours are added up.
ODX_INLINE uint64_t laneBits(s8v mask)
{
    const uint8x16_t places = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
    const uint8x16_t bits = vandq_u8((uint8x16_t)mask, places);
#if defined(__aarch64__)
    uint8x8_t sums = vget_low_u8(vpaddq_u8(bits, bits));
#else
    uint8x8_t sums = vpadd_u8(vget_low_u8(bits), vget_high_u8(bits));
#endif
    sums = vpadd_u8(sums, sums);
    sums = vpadd_u8(sums, sums);
    return vget_lane_u16(vreinterpret_u16_u8(sums), 0);
}

ODX_INLINE uint64_t mirrorBytes(uint64_t v)
{
#if defined(__aarch64__)
    return vget_lane_u64(vreinterpret_u64_u8(vrbit_u8(vcreate_u8(v))), 0);
#else
    return mirrorBytesBySteps(v);
#endif
}

} // namespace odx::ODX_TARGET::simd

#endif
