// The conversion job every inline conversion of OVC_Convert runs in: what the
// dispatcher learnt about both buffers, the capacity test, and the row
// loop that steps both buffers by their 32-bit row differences.
//
// A conversion supplies a row function from the kernel table (one source
// line into one destination line) and the distances from one row start to
// the next; the job supplies the rest. Rows carry no branches on format inside them.
#ifndef ORVANE_CONVERT_CONVERSION_JOB_H
#define ORVANE_CONVERT_CONVERSION_JOB_H

#include <orvane/convert.h>

#include "../common/query.h"
#include "kernels.h"

#include <cstdint>

namespace orv {

// Everything OVC_Convert queried, in one place.
struct ConversionJob {
    const uint8_t *src;
    uint8_t *dst;
    uint32_t src_stride;
    uint32_t dst_stride;
    uint32_t src_height;
    uint32_t dst_height;
    uint32_t src_width;
    uint32_t dst_width;
    uint32_t bayer_method;
    uint32_t bayer_phase;
};

// The capacity test compares w x h x k with m x (stride x height), each
// side formed in 32-bit unsigned arithmetic. The ratio k / m is the
// destination's bytes per pixel, but the scaled forms are kept as each
// pair states them: they give different answers once a product wraps.
struct Capacity {
    uint32_t k;
    uint32_t m;
};

inline bool destination_too_small(const ConversionJob &job, Capacity cap) {
    const uint32_t needed = job.src_width * job.src_height * cap.k;
    const uint32_t available = cap.m * (job.dst_stride * job.dst_height);
    return needed > available;
}

// The step a buffer takes at the end of a row: (stride - bytes accounted
// for in the row) as a 32-bit unsigned difference, counted in units of
// 1 << unit_shift bytes, so a remainder smaller than the unit is dropped.
// A stride below the row length wraps to a huge step, as it always has.
inline uintptr_t row_step(uint32_t stride, uint32_t accounted_bytes,
                          unsigned unit_shift) {
    return static_cast<uintptr_t>((stride - accounted_bytes) >> unit_shift)
           << unit_shift;
}

// Distances in bytes from the start of one row to the start of the next:
// the bytes a row function actually moved over, plus the row step.
struct RowWalk {
    uintptr_t src_next;
    uintptr_t dst_next;
};

// The usual walk: W pixels of fixed size on each side, each row step
// accounting for exactly those bytes.
inline RowWalk plain_walk(const ConversionJob &job, uint32_t src_bytes,
                          unsigned src_unit_shift, uint32_t dst_bytes,
                          unsigned dst_unit_shift) {
    const uint32_t w = job.src_width;
    return {static_cast<uintptr_t>(w) * src_bytes +
                row_step(job.src_stride, w * src_bytes, src_unit_shift),
            static_cast<uintptr_t>(w) * dst_bytes +
                row_step(job.dst_stride, w * dst_bytes, dst_unit_shift)};
}

// Capacity test, height-0 exit, then one row function call per source row.
inline ORV_STATUS run_rows(const ConversionJob &job, Capacity cap,
                           RowWalk walk, RowFunction row) {
    if (destination_too_small(job, cap)) return ORV_ERROR_BAD_PARAM;
    const uint8_t *src = job.src;
    uint8_t *dst = job.dst;
    for (uint32_t y = 0; y < job.src_height; ++y) {
        row(src, dst, job.src_width);
        src = advance(src, walk.src_next);
        dst = advance(dst, walk.dst_next);
    }
    return ORV_OK;
}

// A pair of fixed-size pixels, walked by the units of its source and
// destination row types: u16 sides drop an odd byte from their row steps,
// u32 and 30-bit ones anything short of four.
template <class Src, class Dst>
ORV_STATUS run_pair(const ConversionJob &job, Capacity cap, RowFunction row) {
    return run_rows(job, cap,
                    plain_walk(job, Src::bytes, Src::unit_shift, Dst::bytes,
                               Dst::unit_shift),
                    row);
}

// The conversion families behind OVC_Convert. Each takes the key
// (source low byte << 8 | destination low byte) of its own source formats
// and returns ORV_ERROR_NOT_SUPPORTED for destinations it does not convert.
ORV_STATUS convert_from_grey(const ConversionJob &job, uint32_t key);
ORV_STATUS convert_from_colour(const ConversionJob &job, uint32_t key);
ORV_STATUS convert_from_yuv422(const ConversionJob &job, uint32_t key);
ORV_STATUS convert_from_bayer(const ConversionJob &job, uint32_t key,
                              OFS_HANDLE source, OFS_HANDLE destination);

} // namespace orv

#endif // ORVANE_CONVERT_CONVERSION_JOB_H
