// Bilinear and Median: filled lines made from the 3 x 2 neighbourhood of
// each byte (the byte and its same-channel neighbours left and right, in
// the line above and the line below), laid out by pixel format.
//
// Both methods share the line shapes; they differ in the value of a
// neighbourhood (the weighted kernel or the median of six) and in how many
// 32-bit pixels they reach. The first and last pixels of a line, where a
// side neighbour is missing, are plain vertical means. The weighted
// kernel and the Y8, 24-bit and 32-bit line shapes live in byte_lines.h;
// Bilinear takes those three lines from the kernel table of the level in
// use, Median's lines and both methods' YUV 4:2:2 lines are plain.
#include "byte_lines.h"
#include "frame.h"
#include "kernels.h"

namespace orv {
namespace deinterlace {
namespace {

using field_lines::grey_line;
using field_lines::quad_line;
using field_lines::triple_line;
using field_lines::vertical_mean;
using field_lines::WeightedKernel;

// ---- Values of a neighbourhood --------------------------------------------

uint32_t lesser(uint32_t a, uint32_t b) { return a < b ? a : b; }
uint32_t greater(uint32_t a, uint32_t b) { return a < b ? b : a; }

// The median of six bytes: the mean, rounded down, of the third and fourth
// smallest. Three pair orderings, one comparison of the pair maxima and a
// short decision tree; nothing is sorted.
uint32_t median_of_six(uint32_t x0, uint32_t x1, uint32_t x2, uint32_t x3,
                       uint32_t x4, uint32_t x5) {
    x0 &= 0xFFu, x1 &= 0xFFu, x2 &= 0xFFu, x3 &= 0xFFu, x4 &= 0xFFu,
        x5 &= 0xFFu;
    const uint32_t lo01 = lesser(x0, x1), hi01 = greater(x0, x1);
    const uint32_t lo23 = lesser(x2, x3), hi23 = greater(x2, x3);
    const uint32_t r_lo = lesser(x4, x5), r_hi = greater(x4, x5);
    // P: of the first two pairs the one with the larger high value (the
    // first on a tie); Q: the other.
    const bool first_is_p = hi01 >= hi23;
    const uint32_t p_lo = first_is_p ? lo01 : lo23;
    const uint32_t p_hi = first_is_p ? hi01 : hi23;
    const uint32_t q_lo = first_is_p ? lo23 : lo01;
    const uint32_t q_hi = first_is_p ? hi23 : hi01;
    // The four values of P and Q in order: a <= b <= c <= d = p_hi.
    const uint32_t a = lesser(p_lo, q_lo);
    const uint32_t inner = greater(p_lo, q_lo);
    const uint32_t b = lesser(inner, q_hi);
    const uint32_t c = greater(inner, q_hi);
    const uint32_t d = p_hi;
    // Where the third pair falls among them decides the middle two.
    if (r_hi <= b) return (greater(a, r_hi) + b) >> 1;
    if (r_lo >= c) return (c + lesser(d, r_lo)) >> 1;
    return (greater(b, r_lo) + lesser(c, r_hi)) >> 1;
}

struct MedianOfSix {
    static uint8_t at(const uint8_t *a, const uint8_t *b, uint32_t i,
                      uint32_t d) {
        return static_cast<uint8_t>(
            median_of_six(a[i - d], a[i], a[i + d], b[i - d], b[i], b[i + d]));
    }
    // 32-bit lines stop three pixels short of the kernel's: the line is
    // 12 bytes shorter than the stride, and since the field and the frame
    // move on by the line written, later lines shear left by 12 bytes each.
    static uint32_t inner_pixels_32(uint32_t stride) {
        const uint32_t pixels = (stride - 4) >> 2;
        return pixels > 4 ? pixels - 4 : 0;
    }
    // A one-byte stride makes a two-byte line of vertical means.
    static constexpr uint32_t least_grey_stride = 1;
};

// ---- Line shapes ------------------------------------------------------------

// YUV 4:2:2 (Y0 U Y1 V): luma neighbours two bytes away, chroma four.
// Bytes 0, 1 and 3 are means, byte 2 a neighbourhood value; then luma and
// chroma alternate while a chroma byte has its right neighbour, and the
// three bytes after the last luma byte are means. An odd stride makes the
// line one byte longer than the stride (read past the line below, written
// over the next frame line's first byte, which the next copy overwrites);
// the field and the frame still move on by the stride.
template <class Rule>
uintptr_t yuv_line(const uint8_t *a, uint32_t stride, uint8_t *out) {
    const uint8_t *b = advance(a, stride);
    out[0] = vertical_mean(a, b, 0);
    out[1] = vertical_mean(a, b, 1);
    out[2] = Rule::at(a, b, 2, 2);
    out[3] = vertical_mean(a, b, 3);
    uint32_t k = 0;
    for (;; k += 2) {
        out[4 + k] = Rule::at(a, b, 4 + k, 2);
        if (!(k + 4 < stride - 4)) break;
        out[5 + k] = Rule::at(a, b, 5 + k, 4);
    }
    for (uint32_t i = 5 + k; i < 8 + k; ++i) out[i] = vertical_mean(a, b, i);
    return stride;
}

// A method's lines for each layout, and the least Y8 stride it handles.
struct MethodLines {
    FillLine grey;
    uint32_t least_grey_stride;
    FillLine triple, quad, yuv;
};

// The layout is told by the whole format code. Strides below the smallest
// line of a layout are refused by the frame.
ShapeChoice shape_for(uint32_t format, const MethodLines &lines) {
    switch (format) {
    case ORV_FORMAT_Y8:
        return {true, {lines.grey, lines.least_grey_stride}};
    case ORV_FORMAT_XBGR32: case ORV_FORMAT_BGRX32:
    case ORV_FORMAT_XRGB32: case ORV_FORMAT_RGBX32:
        return {true, {lines.quad, 8}};
    case ORV_FORMAT_BGR24: case ORV_FORMAT_RGB24:
        return {true, {lines.triple, 3}};
    case ORV_FORMAT_YUV422:
        return {true, {lines.yuv, 8}};
    default:
        return {false, {nullptr, 0}};
    }
}

ShapeChoice bilinear_shape(uint32_t format) {
    const DeinterlaceKernels &k = kernels_in_use();
    return shape_for(format, {k.bilinear_grey,
                              WeightedKernel::least_grey_stride,
                              k.bilinear_triple, k.bilinear_quad,
                              yuv_line<WeightedKernel>});
}

ShapeChoice median_shape(uint32_t format) {
    return shape_for(format, {grey_line<MedianOfSix>,
                              MedianOfSix::least_grey_stride,
                              triple_line<MedianOfSix>, quad_line<MedianOfSix>,
                              yuv_line<MedianOfSix>});
}

} // namespace
} // namespace deinterlace
} // namespace orv

extern "C" ORV_API uint32_t ORV_median6(uint32_t x0, uint32_t x1, uint32_t x2,
                                        uint32_t x3, uint32_t x4,
                                        uint32_t x5) {
    return orv::deinterlace::median_of_six(x0, x1, x2, x3, x4, x5);
}

extern "C" ORV_API ORV_STATUS OVC_FieldToFrame_Bilinear(OFS_HANDLE field,
                                                       OFS_HANDLE frame,
                                                       uint32_t parity) {
    using namespace orv::deinterlace;
    return field_to_frame_by_format(field, frame, parity, bilinear_shape);
}

extern "C" ORV_API ORV_STATUS OVC_FieldToFrame_Median(OFS_HANDLE field,
                                                     OFS_HANDLE frame,
                                                     uint32_t parity) {
    using namespace orv::deinterlace;
    return field_to_frame_by_format(field, frame, parity, median_shape);
}
