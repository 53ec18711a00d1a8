#include "vdp2/background/rotation_row_sampler.h"

#include <atomic>
#include <cstddef>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define VDPGL_ROW_AVX2 1
#include <immintrin.h>
#elif defined(__SSE__) || defined(_M_X64)
#include <xmmintrin.h>
#endif

namespace vdpgl {

int32_t TruncateCoordinate(float v) {
#if defined(VDPGL_ROW_AVX2) || defined(__SSE__) || defined(_M_X64)
    return _mm_cvtt_ss2si(_mm_set_ss(v));  // out of range: INT32_MIN, as the eight-wide form gives
#else
    return (v > -2147483520.0f && v < 2147483520.0f) ? static_cast<int32_t>(v) : 0;
#endif
}

#ifdef VDPGL_ROW_AVX2

namespace {

constexpr uint32_t kTransparent = 0;

// The eight-wide form reads a slot as four words: key, flips, pointer.
static_assert(sizeof(PreparedCharacter) == 16 && offsetof(PreparedCharacter, key) == 0 &&
              offsetof(PreparedCharacter, flipX) == 4 && offsetof(PreparedCharacter, flipY) == 6 &&
              offsetof(PreparedCharacter, dots) == 8);

// The same sums as RotationRow::MapX and MapY, eight lanes at a time: a
// multiply and an add each, never fused, so that every lane rounds as the
// one-by-one form does.
__attribute__((target("avx2"))) __m256i MapCoordinate(__m256 share, __m256 start, __m256 k, __m256 origin,
                                                      __m256i mask) {
    return _mm256_and_si256(_mm256_cvttps_epi32(_mm256_add_ps(_mm256_mul_ps(_mm256_add_ps(share, start), k), origin)),
                            mask);
}

__attribute__((target("avx2"))) int32_t SampleAvx2(const RotationRow& in, uint32_t* row, int32_t first) {
    const RowPlacement &a = in.place[0], &b = in.place[1];
    const __m256 xspA = _mm256_set1_ps(a.xsp), xspB = _mm256_set1_ps(b.xsp);
    const __m256 yspA = _mm256_set1_ps(a.ysp), yspB = _mm256_set1_ps(b.ysp);
    const __m256 xpA = _mm256_set1_ps(a.xp), xpB = _mm256_set1_ps(b.xp);
    const __m256 ypA = _mm256_set1_ps(a.yp), ypB = _mm256_set1_ps(b.yp);
    const __m256i xMaskA = _mm256_set1_epi32(a.mapXMask), xMaskB = _mm256_set1_epi32(b.mapXMask);
    const __m256i yMaskA = _mm256_set1_epi32(a.mapYMask), yMaskB = _mm256_set1_epi32(b.mapYMask);
    const __m128i charShift = _mm_cvtsi32_si128(in.charShift);
    const __m256i dotMask = _mm256_set1_epi32((1 << in.charShift) - 1);
    const __m256i one = _mm256_set1_epi32(1), minusOne = _mm256_set1_epi32(-1);
    const __m256i columnMask = _mm256_set1_epi32(kSlotColumns - 1), rowMask = _mm256_set1_epi32(kSlotRows - 1);
    const __m256i low16 = _mm256_set1_epi32(0xFFFF);
    const __m256i none = _mm256_set1_epi64x(static_cast<long long>(reinterpret_cast<uintptr_t>(&kTransparent)));
    const float* dXA = in.dX[0];
    const float* dXB = in.dX[1] ? in.dX[1] : in.dX[0];
    const float* dYA = in.dY[0];
    const float* dYB = in.dY[1] ? in.dY[1] : in.dY[0];

    int32_t j = first;
    for (; j + 8 <= in.columns; j += 8) {
        const __m256i q = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in.parameter + j));
        const __m256i opaque = _mm256_cmpgt_epi32(q, minusOne);
        const __m256i onB = _mm256_cmpeq_epi32(q, one);
        const __m256 pickB = _mm256_castsi256_ps(onB);
        const __m256i mapX = MapCoordinate(
            _mm256_blendv_ps(_mm256_loadu_ps(dXA + j), _mm256_loadu_ps(dXB + j), pickB),
            _mm256_blendv_ps(xspA, xspB, pickB), _mm256_loadu_ps(in.kx + j), _mm256_blendv_ps(xpA, xpB, pickB),
            _mm256_blendv_epi8(xMaskA, xMaskB, onB));
        const __m256i mapY = MapCoordinate(
            _mm256_blendv_ps(_mm256_loadu_ps(dYA + j), _mm256_loadu_ps(dYB + j), pickB),
            _mm256_blendv_ps(yspA, yspB, pickB), _mm256_loadu_ps(in.ky + j), _mm256_blendv_ps(ypA, ypB, pickB),
            _mm256_blendv_epi8(yMaskA, yMaskB, onB));
        const __m256i column = _mm256_srl_epi32(mapX, charShift), line = _mm256_srl_epi32(mapY, charShift);
        const __m256i parameter = _mm256_and_si256(q, one);
        const __m256i key = _mm256_or_si256(_mm256_or_si256(column, _mm256_slli_epi32(line, 15)),
                                            _mm256_slli_epi32(parameter, 30));
        // Transparent lanes look at slot 0 and take nothing from it.
        const __m256i slot = _mm256_and_si256(
            _mm256_or_si256(_mm256_or_si256(_mm256_and_si256(column, columnMask),
                                            _mm256_slli_epi32(_mm256_and_si256(line, rowMask), 6)),
                            _mm256_slli_epi32(parameter, 11)),
            opaque);
        // The eight slots, 16 bytes each, loaded whole and turned into keys,
        // flips and pointers: cheaper than gathering each field.
        alignas(32) uint32_t slotAt[8];
        _mm256_store_si256(reinterpret_cast<__m256i*>(slotAt), slot);
        const auto load = [&](int lane) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(in.slots + slotAt[lane]));
        };
        const __m256i s04 = _mm256_set_m128i(load(4), load(0)), s15 = _mm256_set_m128i(load(5), load(1));
        const __m256i s26 = _mm256_set_m128i(load(6), load(2)), s37 = _mm256_set_m128i(load(7), load(3));
        const __m256i keyFlip01 = _mm256_unpacklo_epi32(s04, s15), keyFlip23 = _mm256_unpacklo_epi32(s26, s37);
        const __m256i held = _mm256_unpacklo_epi64(keyFlip01, keyFlip23);
        const __m256i stale = _mm256_andnot_si256(_mm256_cmpeq_epi32(held, key), opaque);
        if (!_mm256_testz_si256(stale, stale)) break;  // the caller prepares this one
        const __m256i flip = _mm256_unpackhi_epi64(keyFlip01, keyFlip23);
        const __m256i dotX = _mm256_xor_si256(_mm256_and_si256(mapX, dotMask), _mm256_and_si256(flip, low16));
        const __m256i dotY = _mm256_xor_si256(_mm256_and_si256(mapY, dotMask), _mm256_srli_epi32(flip, 16));
        const __m256i offset = _mm256_slli_epi32(_mm256_or_si256(_mm256_sll_epi32(dotY, charShift), dotX), 2);
        const __m256i pointers0145 = _mm256_unpackhi_epi64(s04, s15), pointers2367 = _mm256_unpackhi_epi64(s26, s37);
        const __m256i pointersLow = _mm256_permute2x128_si256(pointers0145, pointers2367, 0x20);
        const __m256i pointersHigh = _mm256_permute2x128_si256(pointers0145, pointers2367, 0x31);
        const __m256i addressLow =
            _mm256_add_epi64(pointersLow, _mm256_cvtepi32_epi64(_mm256_castsi256_si128(offset)));
        const __m256i addressHigh =
            _mm256_add_epi64(pointersHigh, _mm256_cvtepi32_epi64(_mm256_extracti128_si256(offset, 1)));
        // Transparent lanes read a zero of their own.
        alignas(32) const uint32_t* at[8];
        _mm256_store_si256(reinterpret_cast<__m256i*>(at),
                           _mm256_blendv_epi8(none, addressLow, _mm256_cvtepi32_epi64(_mm256_castsi256_si128(opaque))));
        _mm256_store_si256(reinterpret_cast<__m256i*>(at + 4),
                           _mm256_blendv_epi8(none, addressHigh,
                                              _mm256_cvtepi32_epi64(_mm256_extracti128_si256(opaque, 1))));
        const __m256i picked = _mm256_setr_epi32(static_cast<int>(*at[0]), static_cast<int>(*at[1]),
                                                 static_cast<int>(*at[2]), static_cast<int>(*at[3]),
                                                 static_cast<int>(*at[4]), static_cast<int>(*at[5]),
                                                 static_cast<int>(*at[6]), static_cast<int>(*at[7]));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(row + j), picked);
    }
    return j;
}

bool HasAvx2() {
    static const bool available = __builtin_cpu_supports("avx2");
    return available;
}
std::atomic<bool> vectorAllowed{true};

}  // namespace

bool RowVectorSampling() { return HasAvx2() && vectorAllowed.load(std::memory_order_relaxed); }

bool AllowRowVectorSampling(bool allowed) {
    vectorAllowed.store(allowed, std::memory_order_relaxed);
    return HasAvx2();
}

int32_t SampleRowVector(const RotationRow& in, uint32_t* row, int32_t first) {
    return RowVectorSampling() ? SampleAvx2(in, row, first) : first;
}

#else

bool RowVectorSampling() { return false; }
bool AllowRowVectorSampling(bool) { return false; }
int32_t SampleRowVector(const RotationRow&, uint32_t*, int32_t first) { return first; }

#endif

}  // namespace vdpgl
