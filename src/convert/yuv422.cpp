// Conversions from YUV 4:2:2 into the six 8-bit-per-channel colour layouts:
// the capacity forms and the walk around the row of yuv422_rows.h.
//
// The source is read as one packed run: its stride is never used, so each
// line starts where the previous one's last pair ended. The destination
// steps by its stride less W pixels from where the last pair ended, so on
// an odd width the next line starts one pixel further on.
#include "byte_layouts.h"
#include "frame.h"
#include "yuv422_rows.h"

namespace orv {
namespace {

template <class Layout>
ORV_STATUS yuv422_pair(const ConversionJob &job, Capacity cap) {
    const uint32_t w = job.src_width;
    const uintptr_t pairs = w / 2 + (w & 1u);
    const RowWalk walk{pairs * 4,
                       pairs * 2 * Layout::bytes +
                           row_step(job.dst_stride, w * Layout::bytes, 0)};
    return run_rows<yuv422::fastest_row<Layout>>(job, cap, walk);
}

} // namespace

// The 24-bit pairs compare W x H x 6 with twice the destination's size.
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
