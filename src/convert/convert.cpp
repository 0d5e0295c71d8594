// OVC_Convert: validates both buffers, queries them in a fixed order, forms
// the conversion key and hands the job to the family of its source format.
#include <orvane/convert.h>

#include "conversion_job.h"

namespace orv {
namespace {

// Source low byte in the high byte, destination low byte in the low byte.
uint32_t conversion_key(uint32_t src_format, uint32_t dst_format) {
    return ((src_format << 8) & 0xFFFFu) + (dst_format & 0xFFu);
}

// One switch on the source family; each family switches on the full key.
ORV_STATUS dispatch(const ConversionJob &job, uint32_t key, OFS_HANDLE source,
                    OFS_HANDLE destination) {
    switch (key >> 8) {
    case 0x01: case 0x02: case 0x13: case 0x14: case 0x15: case 0x1B:
        return convert_from_grey(job, key);
    case 0x08: case 0x09: case 0x0F: case 0x11: case 0x1C:
        return convert_from_colour(job, key);
    case 0x1E:
        return convert_from_yuv422(job, key);
    case 0x16: case 0x17: case 0x18: case 0x19: case 0x1A:
        return convert_from_bayer(job, key, source, destination);
    default:
        return ORV_ERROR_NOT_SUPPORTED;
    }
}

} // namespace
} // namespace orv

extern "C" ORV_API ORV_STATUS OVC_Convert(OFS_HANDLE source,
                                          OFS_HANDLE destination) {
    using namespace orv;
    if (!buffer_is_valid(source)) return ORV_ERROR_BAD_PARAM;
    if (!buffer_is_valid(destination)) return ORV_ERROR_BAD_PARAM;
    const uint32_t dst_format = query_u32(destination, OFS_FORMAT);
    if (dst_format == 0) return ORV_ERROR_BAD_PARAM;
    const uint32_t src_format = query_u32(source, OFS_FORMAT);
    if (src_format == 0) return ORV_ERROR_BAD_PARAM;
    const uint8_t *src = query_address(source);
    if (src == nullptr) return ORV_ERROR_BAD_PARAM;
    uint8_t *dst = query_address(destination);
    if (dst == nullptr) return ORV_ERROR_BAD_PARAM;

    ConversionJob job;
    job.src = src;
    job.dst = dst;
    job.src_stride = query_u32(source, OFS_STRIDE);
    job.dst_stride = query_u32(destination, OFS_STRIDE);
    job.src_height = query_u32(source, OFS_HEIGHT);
    job.dst_height = query_u32(destination, OFS_HEIGHT);
    job.src_width = query_u32(source, OFS_WIDTH);
    job.dst_width = query_u32(destination, OFS_WIDTH);
    // Asked of every source, Bayer or not.
    job.bayer_method = query_u32(source, OFS_BAYER_METHOD);
    job.bayer_phase = query_u32(source, OFS_BAYER_PHASE);

    return dispatch(job, conversion_key(src_format, dst_format), source,
                    destination);
}
