// Conversions from YUV 4:2:2 into the six 8-bit-per-channel colour layouts:
// the capacity forms and the walk around the row of yuv422_rows.h, taken
// from the kernel table.
//
// The source is read as one packed run: its stride is never used, so each
// line starts where the previous one's last pair ended. The destination
// steps by its stride less W pixels from where the last pair ended, so on
// an odd width the next line starts one pixel further on.
#include "conversion_job.h"

namespace orv {
namespace {

ORV_STATUS yuv422_pair(const ConversionJob &job, Capacity cap,
                       YuvLayout layout, uint32_t bytes) {
    const uint32_t w = job.src_width;
    const uintptr_t pairs = w / 2 + (w & 1u);
    const RowWalk walk{pairs * 4,
                       pairs * 2 * bytes + row_step(job.dst_stride, w * bytes, 0)};
    return run_rows(job, cap, walk, convert_kernels_in_use().yuv422[layout]);
}

} // namespace

// The 24-bit pairs compare W x H x 6 with twice the destination's size.
ORV_STATUS convert_from_yuv422(const ConversionJob &job, uint32_t key) {
    switch (key & 0xFFu) {
    case 0x07: return yuv422_pair(job, {4, 1}, kYuvToXbgr32, 4);
    case 0x08: return yuv422_pair(job, {4, 1}, kYuvToBgrx32, 4);
    case 0x0C: return yuv422_pair(job, {4, 1}, kYuvToXrgb32, 4);
    case 0x0D: return yuv422_pair(job, {4, 1}, kYuvToRgbx32, 4);
    case 0x11: return yuv422_pair(job, {6, 2}, kYuvToBgr24, 3);
    case 0x12: return yuv422_pair(job, {6, 2}, kYuvToRgb24, 3);
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

} // namespace orv
