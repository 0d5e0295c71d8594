// Conversions from YUV 4:2:2 (bytes Y0, U, Y1, V per pair of pixels) into
// the six 8-bit-per-channel colour layouts, with BT.601 full-range
// coefficients in 10-bit fixed point.
//
// The source is read as one packed run: its stride is never used, so each
// line starts where the previous one's last pair ended. Lines go by whole
// pairs; an odd width converts one pixel more, and the next destination
// line then starts one pixel further on.
#include "byte_layouts.h"
#include "frame.h"

namespace orv {
namespace {

// Division by 1024 rounding toward minus infinity: an arithmetic right
// shift of the signed value.
static_assert((-1 >> 1) == -1, "signed right shifts must be arithmetic");
constexpr int32_t floor_div_1024(int32_t v) { return v >> 10; }

constexpr uint32_t clamp_to_byte(int32_t v) {
    return v < 0 ? 0u : v > 255 ? 255u : static_cast<uint32_t>(v);
}

// The chroma terms of one pair, each floored. G subtracts its floored
// term, so it rounds the other way from B and R.
struct ChromaTerms {
    int32_t b, g, r;
    explicit ChromaTerms(uint32_t u, uint32_t v) {
        const int32_t d = static_cast<int32_t>(u) - 128;
        const int32_t e = static_cast<int32_t>(v) - 128;
        b = floor_div_1024(1815 * d);
        g = floor_div_1024(731 * e + 352 * d);
        r = floor_div_1024(1436 * e);
    }
};

template <class Layout>
void put_pixel(uint8_t *d, uint32_t luma, const ChromaTerms &terms) {
    const int32_t y = static_cast<int32_t>(luma);
    Layout::put(d, clamp_to_byte(y + terms.r), clamp_to_byte(y - terms.g),
                clamp_to_byte(y + terms.b));
}

template <class Layout>
void yuv422_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; x += 2) {
        const ChromaTerms terms(src[1], src[3]);
        put_pixel<Layout>(dst, src[0], terms);
        put_pixel<Layout>(dst + Layout::bytes, src[2], terms);
        src += 4;
        dst += 2 * Layout::bytes;
    }
}

template <class Layout>
ORV_STATUS yuv422_pair(const ConversionJob &job, Capacity cap) {
    const uint32_t w = job.src_width;
    const uintptr_t pairs = w / 2 + (w & 1u);
    const RowWalk walk{pairs * 4,
                       pairs * 2 * Layout::bytes +
                           row_step(job.dst_stride, w * Layout::bytes, 0)};
    return run_rows<yuv422_row<Layout>>(job, cap, walk);
}

} // namespace

// The 24-bit pairs state their capacity test with both sides doubled.
ORV_STATUS convert_from_yuv422(const ConversionJob &job, uint32_t key) {
    switch (key & 0xFFu) {
    case 0x07: return yuv422_pair<LayoutXbgr32>(job, {4, 1});
    case 0x08: return yuv422_pair<LayoutBgrx32>(job, {4, 1});
    case 0x0C: return yuv422_pair<LayoutXrgb32>(job, {4, 1});
    case 0x0D: return yuv422_pair<LayoutRgbx32>(job, {4, 1});
    case 0x11: return yuv422_pair<LayoutBgr24>(job, {6, 2});
    case 0x12: return yuv422_pair<LayoutRgb24>(job, {6, 2});
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

} // namespace orv
