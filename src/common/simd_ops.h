// What the bulk kernels of one instruction set need from its vectors, for
// the kernels written once over them (the conversions' grey, colour and
// YUV 4:2:2 bulk kernels, the de-interlace lines): a
// vector of W bytes seen as 128-bit lanes, loads and stores, lane-wise
// arithmetic, vectors shifted in from their neighbours in memory and,
// from AVX2 on, byte shuffles within a lane and dword permutes across
// lanes. Included by the SIMD kernel files only, inside
// their own namespace, so each file gets its own copy compiled for its
// own instruction set.
#ifndef ORVANE_COMMON_SIMD_OPS_H
#define ORVANE_COMMON_SIMD_OPS_H

#include "isa.h"

#include <immintrin.h>

#include <cstdint>

namespace orv {
inline namespace ORV_ISA {
namespace simd {

#if defined(__AVX512BW__)

struct Ops {
    using V = __m512i;
    static constexpr uint32_t W = 64;
    // Whole vectors move as two 32-byte halves: on CPUs that run AVX-512
    // on 256-bit units, and for rows that do not start on a cache line
    // (most rows), that is faster than one access straddling two lines.
    static V load(const uint8_t *p) {
        return _mm512_inserti64x4(_mm512_castsi256_si512(load256(p)),
                                  load256(p + 32), 1);
    }
    static void store(uint8_t *p, V v) {
        store256(p, _mm512_castsi512_si256(v));
        store256(p + 32, _mm512_extracti64x4_epi64(v, 1));
    }
    // One access for the whole vector: fewer instructions, for kernels
    // that do much work per vector they move.
    static V load_whole(const uint8_t *p) { return _mm512_loadu_si512(p); }
    static void store_whole(uint8_t *p, V v) { _mm512_storeu_si512(p, v); }
    static __m256i load256(const uint8_t *p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p));
    }
    static void store256(uint8_t *p, __m256i v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(p), v);
    }
    // Stores the first `n` bytes of v (n <= W); nothing else is touched.
    static void store_first(uint8_t *p, V v, uint32_t n) {
        const __mmask64 keep = n >= 64 ? ~__mmask64(0)
                                       : (__mmask64(1) << n) - 1;
        _mm512_mask_storeu_epi8(p, keep, v);
    }
    // Stores the bytes of v whose bit is set in the repeating 4-byte
    // pattern `keep4`; the others are never written.
    static void store_bytes_of_quads(uint8_t *p, V v, unsigned keep4) {
        uint64_t keep = 0;
        for (unsigned q = 0; q < 16; ++q) keep |= uint64_t(keep4) << (4 * q);
        _mm512_mask_storeu_epi8(p, keep, v);
    }
    static V bytes(const uint8_t (&table)[W]) { return load(table); }
    static V dwords(const uint32_t (&table)[W / 4]) {
        return _mm512_loadu_si512(table);
    }
    // The W bytes that start D bytes into `cur`, where `next` follows it
    // in memory, and the W bytes that start D bytes before `cur`, where
    // `prev` precedes it (0 < D < 16).
    template <int D> static V after(V cur, V next) {
        if constexpr (D % 4 == 0)
            return _mm512_alignr_epi32(next, cur, D / 4);
        else
            return _mm512_alignr_epi8(_mm512_alignr_epi64(next, cur, 2), cur,
                                      D);
    }
    template <int D> static V before(V prev, V cur) {
        if constexpr (D % 4 == 0)
            return _mm512_alignr_epi32(cur, prev, 16 - D / 4);
        else
            return _mm512_alignr_epi8(cur, _mm512_alignr_epi64(cur, prev, 6),
                                      16 - D);
    }
    // after and before with the even bytes E and the odd bytes O away
    // (0 < E, O < 16).
    template <int E, int O> static V after_by_parity(V cur, V next) {
        const V ahead = _mm512_alignr_epi64(next, cur, 2);
        return _mm512_mask_alignr_epi8(_mm512_alignr_epi8(ahead, cur, E),
                                       kOddBytes, ahead, cur, O);
    }
    template <int E, int O> static V before_by_parity(V prev, V cur) {
        const V behind = _mm512_alignr_epi64(cur, prev, 6);
        return _mm512_mask_alignr_epi8(
            _mm512_alignr_epi8(cur, behind, 16 - E), kOddBytes, cur, behind,
            16 - O);
    }
    static constexpr __mmask64 kOddBytes = 0xAAAAAAAAAAAAAAAAull;
    static V permute_dwords(V v, V index) {
        return _mm512_permutexvar_epi32(index, v);
    }
    static V shuffle_bytes(V v, V index) { return _mm512_shuffle_epi8(v, index); }
    static V set16(uint16_t x) { return _mm512_set1_epi16(static_cast<short>(x)); }
    static V splat8(uint8_t x) { return _mm512_set1_epi8(static_cast<char>(x)); }
    static V zero() { return _mm512_setzero_si512(); }
    static V avg8(V a, V b) { return _mm512_avg_epu8(a, b); }
    static V min8(V a, V b) { return _mm512_min_epu8(a, b); }
    static V max8(V a, V b) { return _mm512_max_epu8(a, b); }
    static V sub8(V a, V b) { return _mm512_sub_epi8(a, b); }
    static V xor_(V a, V b) { return _mm512_xor_si512(a, b); }
    static V mullo16(V a, V b) { return _mm512_mullo_epi16(a, b); }
    static V mulhi16(V a, V b) { return _mm512_mulhi_epu16(a, b); }
    static V set32(uint32_t x) { return _mm512_set1_epi32(static_cast<int>(x)); }
    static V add16(V a, V b) { return _mm512_add_epi16(a, b); }
    static V sub16(V a, V b) { return _mm512_sub_epi16(a, b); }
    static V and_(V a, V b) { return _mm512_and_si512(a, b); }
    static V or_(V a, V b) { return _mm512_or_si512(a, b); }
    template <int N> static V srl16(V v) { return _mm512_srli_epi16(v, N); }
    template <int N> static V sll16(V v) { return _mm512_slli_epi16(v, N); }
    template <int N> static V srl32(V v) { return _mm512_srli_epi32(v, N); }
    template <int N> static V sll32(V v) { return _mm512_slli_epi32(v, N); }
    template <int N> static V sra32(V v) { return _mm512_srai_epi32(v, N); }
    static V madd16(V a, V b) { return _mm512_madd_epi16(a, b); }
    static V avg16(V a, V b) { return _mm512_avg_epu16(a, b); }
    static V min16(V a, V b) { return _mm512_min_epu16(a, b); }
    static V max16(V a, V b) { return _mm512_max_epu16(a, b); }
    // A right shift of 16-bit lanes by a run-time count; 16 or more
    // clears them.
    static V srl16_by(V v, uint32_t n) {
        return _mm512_srl_epi16(v, _mm_cvtsi32_si128(static_cast<int>(n)));
    }
    // The even 16-bit lanes of `even`, the odd ones of `odd`.
    static V blend_odd16(V even, V odd) {
        return _mm512_mask_blend_epi16(0xAAAAAAAAu, even, odd);
    }
    // The even bytes of `even`, the odd ones of `odd`.
    static V blend_odd8(V even, V odd) {
        return _mm512_mask_blend_epi8(0xAAAAAAAAAAAAAAAAull, even, odd);
    }
    // The bytes of v zero-extended into 16-bit lanes: the first W / 2
    // into `low`, the rest into `high`, in memory order.
    static void widen8_halves(V v, V &low, V &high) {
        low = _mm512_cvtepu8_epi16(_mm512_castsi512_si256(v));
        high = _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(v, 1));
    }
    // Unsigned bytes of a times signed bytes of b, adjacent products
    // added into 16-bit lanes (with signed saturation).
    static V maddubs16(V a, V b) { return _mm512_maddubs_epi16(a, b); }
    // Signed saturating pack of 32-bit lanes into 16-bit ones, lane by
    // lane: lane j holds a's lane j, then b's lane j.
    static V packs32(V a, V b) { return _mm512_packs_epi32(a, b); }
    // Saturating pack of two vectors of 16-bit lanes into bytes, lane by
    // lane: lane j holds a's lane j, then b's lane j.
    static V packus16(V a, V b) { return _mm512_packus_epi16(a, b); }
    static V unpacklo8(V a, V b) { return _mm512_unpacklo_epi8(a, b); }
    static V unpackhi8(V a, V b) { return _mm512_unpackhi_epi8(a, b); }
    static V unpacklo16(V a, V b) { return _mm512_unpacklo_epi16(a, b); }
    static V unpackhi16(V a, V b) { return _mm512_unpackhi_epi16(a, b); }
    // The low bytes of the 16-bit lanes of two vectors, in order.
    static V truncate16(V a, V b) {
        return _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtepi16_epi8(a)),
                                  _mm512_cvtepi16_epi8(b), 1);
    }
    // W/2 bytes zero-extended into 16-bit lanes.
    static V widen8(const uint8_t *p) {
        return _mm512_cvtepu8_epi16(
            _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p)));
    }
    // Two vectors of pixels whose lanes alternate between them in memory
    // order (a's lane j, then b's lane j), written out as two vectors in
    // memory order.
    static void zip_lanes(V a, V b, V &first, V &second) {
        first = _mm512_permutex2var_epi64(
            a, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), b);
        second = _mm512_permutex2var_epi64(
            a, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), b);
    }
};

#elif defined(__AVX2__)

struct Ops {
    using V = __m256i;
    static constexpr uint32_t W = 32;
    static V load(const uint8_t *p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p));
    }
    static void store(uint8_t *p, V v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(p), v);
    }
    static V load_whole(const uint8_t *p) { return load(p); }
    static void store_whole(uint8_t *p, V v) { store(p, v); }
    // Stores the first `n` bytes of v, n a multiple of 4 (n <= W).
    static void store_first(uint8_t *p, V v, uint32_t n) {
        const __m256i lane = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
        const __m256i keep = _mm256_cmpgt_epi32(
            _mm256_set1_epi32(static_cast<int>(n / 4)), lane);
        _mm256_maskstore_epi32(reinterpret_cast<int *>(p), keep, v);
    }
    // AVX2 has no byte-masked store: the bytes outside `keep4` are read
    // and written back with the value they had. Callers are told so.
    static void store_bytes_of_quads(uint8_t *p, V v, unsigned keep4) {
        uint32_t keep = 0;
        for (unsigned b = 0; b < 4; ++b)
            if (keep4 & (1u << b)) keep |= 0xFFu << (8 * b);
        store(p, _mm256_blendv_epi8(load(p), v,
                                    _mm256_set1_epi32(static_cast<int>(keep))));
    }
    static V bytes(const uint8_t (&table)[W]) { return load(table); }
    static V dwords(const uint32_t (&table)[W / 4]) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(table));
    }
    template <int D> static V after(V cur, V next) {
        return _mm256_alignr_epi8(_mm256_permute2x128_si256(cur, next, 0x21),
                                  cur, D);
    }
    template <int D> static V before(V prev, V cur) {
        return _mm256_alignr_epi8(
            cur, _mm256_permute2x128_si256(prev, cur, 0x21), 16 - D);
    }
    template <int E, int O> static V after_by_parity(V cur, V next) {
        const V ahead = _mm256_permute2x128_si256(cur, next, 0x21);
        return _mm256_blendv_epi8(_mm256_alignr_epi8(ahead, cur, E),
                                  _mm256_alignr_epi8(ahead, cur, O),
                                  odd_bytes());
    }
    template <int E, int O> static V before_by_parity(V prev, V cur) {
        const V behind = _mm256_permute2x128_si256(prev, cur, 0x21);
        return _mm256_blendv_epi8(_mm256_alignr_epi8(cur, behind, 16 - E),
                                  _mm256_alignr_epi8(cur, behind, 16 - O),
                                  odd_bytes());
    }
    static V odd_bytes() {
        return _mm256_set1_epi16(static_cast<short>(0xFF00));
    }
    static V permute_dwords(V v, V index) {
        return _mm256_permutevar8x32_epi32(v, index);
    }
    static V shuffle_bytes(V v, V index) { return _mm256_shuffle_epi8(v, index); }
    static V set16(uint16_t x) { return _mm256_set1_epi16(static_cast<short>(x)); }
    static V splat8(uint8_t x) { return _mm256_set1_epi8(static_cast<char>(x)); }
    static V zero() { return _mm256_setzero_si256(); }
    static V avg8(V a, V b) { return _mm256_avg_epu8(a, b); }
    static V min8(V a, V b) { return _mm256_min_epu8(a, b); }
    static V max8(V a, V b) { return _mm256_max_epu8(a, b); }
    static V sub8(V a, V b) { return _mm256_sub_epi8(a, b); }
    static V xor_(V a, V b) { return _mm256_xor_si256(a, b); }
    static V mullo16(V a, V b) { return _mm256_mullo_epi16(a, b); }
    static V mulhi16(V a, V b) { return _mm256_mulhi_epu16(a, b); }
    static V set32(uint32_t x) { return _mm256_set1_epi32(static_cast<int>(x)); }
    static V add16(V a, V b) { return _mm256_add_epi16(a, b); }
    static V sub16(V a, V b) { return _mm256_sub_epi16(a, b); }
    static V and_(V a, V b) { return _mm256_and_si256(a, b); }
    static V or_(V a, V b) { return _mm256_or_si256(a, b); }
    template <int N> static V srl16(V v) { return _mm256_srli_epi16(v, N); }
    template <int N> static V sll16(V v) { return _mm256_slli_epi16(v, N); }
    template <int N> static V srl32(V v) { return _mm256_srli_epi32(v, N); }
    template <int N> static V sll32(V v) { return _mm256_slli_epi32(v, N); }
    template <int N> static V sra32(V v) { return _mm256_srai_epi32(v, N); }
    static V madd16(V a, V b) { return _mm256_madd_epi16(a, b); }
    static V avg16(V a, V b) { return _mm256_avg_epu16(a, b); }
    static V min16(V a, V b) { return _mm256_min_epu16(a, b); }
    static V max16(V a, V b) { return _mm256_max_epu16(a, b); }
    static V srl16_by(V v, uint32_t n) {
        return _mm256_srl_epi16(v, _mm_cvtsi32_si128(static_cast<int>(n)));
    }
    static V blend_odd16(V even, V odd) {
        return _mm256_blend_epi16(even, odd, 0xAA);
    }
    static V blend_odd8(V even, V odd) {
        return _mm256_blendv_epi8(even, odd, _mm256_set1_epi16(
                                                 static_cast<short>(0xFF00)));
    }
    static void widen8_halves(V v, V &low, V &high) {
        low = _mm256_cvtepu8_epi16(_mm256_castsi256_si128(v));
        high = _mm256_cvtepu8_epi16(_mm256_extracti128_si256(v, 1));
    }
    static V maddubs16(V a, V b) { return _mm256_maddubs_epi16(a, b); }
    static V packs32(V a, V b) { return _mm256_packs_epi32(a, b); }
    static V packus16(V a, V b) { return _mm256_packus_epi16(a, b); }
    static V unpacklo8(V a, V b) { return _mm256_unpacklo_epi8(a, b); }
    static V unpackhi8(V a, V b) { return _mm256_unpackhi_epi8(a, b); }
    static V unpacklo16(V a, V b) { return _mm256_unpacklo_epi16(a, b); }
    static V unpackhi16(V a, V b) { return _mm256_unpackhi_epi16(a, b); }
    static V truncate16(V a, V b) {
        const V low = _mm256_set1_epi16(0xFF);
        return _mm256_permute4x64_epi64(
            _mm256_packus_epi16(_mm256_and_si256(a, low),
                                _mm256_and_si256(b, low)),
            _MM_SHUFFLE(3, 1, 2, 0));
    }
    static V widen8(const uint8_t *p) {
        return _mm256_cvtepu8_epi16(
            _mm_loadu_si128(reinterpret_cast<const __m128i *>(p)));
    }
    static void zip_lanes(V a, V b, V &first, V &second) {
        first = _mm256_permute2x128_si256(a, b, 0x20);
        second = _mm256_permute2x128_si256(a, b, 0x31);
    }
};

#elif defined(__SSE2__)

// SSE2 has no byte shuffle nor lane permute: only the lane-wise part.
struct Ops {
    using V = __m128i;
    static constexpr uint32_t W = 16;
    static V load(const uint8_t *p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
    }
    static void store(uint8_t *p, V v) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p), v);
    }
    static V load_whole(const uint8_t *p) { return load(p); }
    static void store_whole(uint8_t *p, V v) { store(p, v); }
    template <int D> static V after(V cur, V next) {
        return _mm_or_si128(_mm_srli_si128(cur, D),
                            _mm_slli_si128(next, 16 - D));
    }
    template <int D> static V before(V prev, V cur) {
        return _mm_or_si128(_mm_slli_si128(cur, D),
                            _mm_srli_si128(prev, 16 - D));
    }
    template <int E, int O> static V after_by_parity(V cur, V next) {
        return odd_from(after<E>(cur, next), after<O>(cur, next));
    }
    template <int E, int O> static V before_by_parity(V prev, V cur) {
        return odd_from(before<E>(prev, cur), before<O>(prev, cur));
    }
    // The even bytes of `even`, the odd ones of `odd`.
    static V odd_from(V even, V odd) {
        const V odd_bytes = _mm_set1_epi16(static_cast<short>(0xFF00));
        return _mm_or_si128(_mm_andnot_si128(odd_bytes, even),
                            _mm_and_si128(odd_bytes, odd));
    }
    static V set16(uint16_t x) { return _mm_set1_epi16(static_cast<short>(x)); }
    static V splat8(uint8_t x) { return _mm_set1_epi8(static_cast<char>(x)); }
    static V zero() { return _mm_setzero_si128(); }
    static V avg8(V a, V b) { return _mm_avg_epu8(a, b); }
    static V min8(V a, V b) { return _mm_min_epu8(a, b); }
    static V max8(V a, V b) { return _mm_max_epu8(a, b); }
    static V sub8(V a, V b) { return _mm_sub_epi8(a, b); }
    static V xor_(V a, V b) { return _mm_xor_si128(a, b); }
    static V add16(V a, V b) { return _mm_add_epi16(a, b); }
    static V mullo16(V a, V b) { return _mm_mullo_epi16(a, b); }
    static V mulhi16(V a, V b) { return _mm_mulhi_epu16(a, b); }
    static V packus16(V a, V b) { return _mm_packus_epi16(a, b); }
    static V and_(V a, V b) { return _mm_and_si128(a, b); }
    static V or_(V a, V b) { return _mm_or_si128(a, b); }
    template <int N> static V srl16(V v) { return _mm_srli_epi16(v, N); }
    template <int N> static V sll16(V v) { return _mm_slli_epi16(v, N); }
    static V unpacklo8(V a, V b) { return _mm_unpacklo_epi8(a, b); }
    static V unpackhi8(V a, V b) { return _mm_unpackhi_epi8(a, b); }
    static V unpacklo16(V a, V b) { return _mm_unpacklo_epi16(a, b); }
    static V unpackhi16(V a, V b) { return _mm_unpackhi_epi16(a, b); }
    static V truncate16(V a, V b) {
        const V low = _mm_set1_epi16(0xFF);
        return _mm_packus_epi16(_mm_and_si128(a, low), _mm_and_si128(b, low));
    }
    static V widen8(const uint8_t *p) {
        return _mm_unpacklo_epi8(
            _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p)),
            _mm_setzero_si128());
    }
};

#endif

// Runs `step` over whole steps of P pixels while `Room` more pixels
// follow; returns the pixels done, which the plain row takes over from.
template <uint32_t P, uint32_t Room = 0, class Step>
uint32_t whole_steps(const uint8_t *src, uint8_t *dst, uint32_t width,
                     uint32_t src_step, uint32_t dst_step, Step step) {
    uint32_t done = 0;
    for (; width - done >= P + Room; done += P) {
        step(src, dst);
        src += src_step;
        dst += dst_step;
    }
    return done;
}

} // namespace simd
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_COMMON_SIMD_OPS_H
