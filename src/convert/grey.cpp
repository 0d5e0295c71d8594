// Conversions from the grey sources Y8, Y16, Y10, Y12, Y14 and packed
// 12-bit Y12P: each pair's capacity factors and row walk around the rows
// of grey_rows.h, taken from the kernel table.
#include "conversion_job.h"
#include "grey_rows.h"

#include <cstring>

namespace orv {
namespace {

using namespace grey;

template <class Src, class Dst>
ORV_STATUS grey_pair(const ConversionJob &job, Capacity cap) {
    return run_pair<Src, Dst>(
        job, cap, convert_kernels_in_use().grey[Src::index][Dst::index]);
}

// Y8 into Y8 off the copy path: the destination's row step subtracts the
// destination's own width, not the source width that was written.
ORV_STATUS y8_to_y8_rows(const ConversionJob &job) {
    const uint32_t w = job.src_width;
    const RowWalk walk{w + row_step(job.src_stride, w, 0),
                       w + row_step(job.dst_stride, job.dst_width, 0)};
    return run_rows(job, {1, 1}, walk,
                    convert_kernels_in_use().grey[kFromY8][kToGrey8]);
}

// Y12P rows move by whole pairs; both row steps subtract the bytes of W
// pixels from where the pair loop stopped (one pixel further on an odd W).
template <class Dst>
ORV_STATUS y12p_pair(const ConversionJob &job, Capacity cap) {
    const uint32_t w = job.src_width;
    const uintptr_t pairs = w / 2 + (w & 1u);
    const RowWalk walk{
        pairs * 3 + row_step(job.src_stride, (3 * w) >> 1, 0),
        pairs * 2 * Dst::bytes +
            row_step(job.dst_stride, w * Dst::bytes, Dst::unit_shift)};
    return run_rows(job, cap, walk, convert_kernels_in_use().y12p[Dst::index]);
}

// Keys 0x0101 and 0x0202 with equal strides and heights: one copy of
// height x stride bytes (32-bit product), no capacity test, widths ignored.
bool same_layout(const ConversionJob &job) {
    return job.src_stride == job.dst_stride &&
           job.src_height == job.dst_height;
}

ORV_STATUS copy_block(const ConversionJob &job) {
    std::memmove(job.dst, job.src, job.src_height * job.src_stride);
    return ORV_OK;
}

template <class Src> ORV_STATUS from_u16(const ConversionJob &job, uint32_t dst) {
    switch (dst) {
    case 0x01: return grey_pair<Src, ToGrey8>(job, {2, 2});
    case 0x02: return grey_pair<Src, ToGrey16>(job, {2, 1});
    case 0x03: return grey_pair<Src, ToGrey32>(job, {4, 1});
    case 0x05: case 0x0A: return grey_pair<Src, To555>(job, {2, 1});
    case 0x06: case 0x0B: return grey_pair<Src, To565>(job, {2, 1});
    case 0x07: case 0x08: case 0x0C: case 0x0D:
        return grey_pair<Src, ToBytes32>(job, {4, 1});
    case 0x09: case 0x0E: return grey_pair<Src, ToWords48>(job, {6, 1});
    case 0x0F: case 0x10: return grey_pair<Src, ToPacked30>(job, {4, 1});
    case 0x11: case 0x12: return grey_pair<Src, ToBytes24>(job, {6, 2});
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

ORV_STATUS from_y8(const ConversionJob &job, uint32_t dst) {
    switch (dst) {
    case 0x01: return same_layout(job) ? copy_block(job) : y8_to_y8_rows(job);
    case 0x02: case 0x13: case 0x14: case 0x15:
        return grey_pair<FromY8, ToGrey16>(job, {2, 1});
    case 0x03: return grey_pair<FromY8, ToGrey32>(job, {4, 1});
    case 0x05: case 0x0A: return grey_pair<FromY8, To555>(job, {2, 1});
    case 0x06: case 0x0B: return grey_pair<FromY8, To565>(job, {2, 1});
    case 0x07: case 0x08: case 0x0C: case 0x0D:
        return grey_pair<FromY8, ToBytes32>(job, {4, 1});
    case 0x09: case 0x0E: case 0x1C: case 0x1D:
        return grey_pair<FromY8, ToWords48>(job, {6, 1});
    case 0x0F: case 0x10: return grey_pair<FromY8, ToPacked30>(job, {4, 1});
    case 0x11: case 0x12: return grey_pair<FromY8, ToBytes24>(job, {3, 1});
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

ORV_STATUS from_y12p(const ConversionJob &job, uint32_t dst) {
    switch (dst) {
    case 0x06: case 0x0B: return y12p_pair<To565>(job, {6, 3});
    case 0x07: case 0x08: case 0x0C: case 0x0D:
        return y12p_pair<ToBytes32>(job, {12, 3});
    case 0x11: case 0x12: return y12p_pair<ToBytes24>(job, {3, 1});
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

} // namespace

ORV_STATUS convert_from_grey(const ConversionJob &job, uint32_t key) {
    const uint32_t dst = key & 0xFFu;
    switch (key >> 8) {
    case 0x01: return from_y8(job, dst);
    case 0x02:
        if (dst == 0x02 && same_layout(job)) return copy_block(job);
        return from_u16<FromU16<16>>(job, dst);
    case 0x13: return from_u16<FromU16<10>>(job, dst);
    case 0x14: return from_u16<FromU16<12>>(job, dst);
    case 0x15: return from_u16<FromU16<14>>(job, dst);
    case 0x1B: return from_y12p(job, dst);
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

} // namespace orv
