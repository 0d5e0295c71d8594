// The SSE2 de-interlace table: the mean line and the weighted runs sixteen
// bytes a step.
#include "simd_lines.h"

#include <emmintrin.h>

namespace orv {
inline namespace ORV_ISA {
namespace field_lines {

struct VectorOps {
    using V = __m128i;
    static constexpr uint32_t W = 16;
    static V load(const uint8_t *p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
    }
    static void store(uint8_t *p, V v) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p), v);
    }
    static V splat8(uint8_t x) { return _mm_set1_epi8(static_cast<char>(x)); }
    static V splat16(uint16_t x) { return _mm_set1_epi16(static_cast<short>(x)); }
    static V zero() { return _mm_setzero_si128(); }
    static V avg8(V a, V b) { return _mm_avg_epu8(a, b); }
    static V sub8(V a, V b) { return _mm_sub_epi8(a, b); }
    static V xor_(V a, V b) { return _mm_xor_si128(a, b); }
    static V and_(V a, V b) { return _mm_and_si128(a, b); }
    static V unpacklo8(V a, V b) { return _mm_unpacklo_epi8(a, b); }
    static V unpackhi8(V a, V b) { return _mm_unpackhi_epi8(a, b); }
    static V add16(V a, V b) { return _mm_add_epi16(a, b); }
    static V mullo16(V a, V b) { return _mm_mullo_epi16(a, b); }
    static V mulhi16(V a, V b) { return _mm_mulhi_epu16(a, b); }
    static V packus16(V a, V b) { return _mm_packus_epi16(a, b); }
};

} // namespace field_lines

constexpr deinterlace::DeinterlaceKernels deinterlace_kernels =
    field_lines::vector_kernels<field_lines::VectorOps>();

} // namespace ORV_ISA
} // namespace orv
