// The frame the four de-interlace methods share: checks, queries, the
// capacity test and the order of the frame lines.
//
// Checks and queries come in a fixed order. The frame's own validity is
// fetched and never tested here (the dispatcher tests it), and the
// capacity test compares 2 x W x H, in pixels, with the frame's height x
// stride, in bytes, exactly as it always has: a multi-byte format can pass
// it with a frame too small for the lines written. A field height of 0
// and strides below the smallest line a shape handles are refused with
// ORV_ERROR_BAD_PARAM before anything is written.
#include "frame_assembly.h"

#include <cstring>

namespace orv {
namespace deinterlace {
namespace {

struct Geometry {
    const uint8_t *field;
    uint8_t *frame;
    uint32_t stride;
    uint32_t height;
};

enum class ReadsFormat { no, yes };

// Steps 1 to 6 of every method: validity, addresses, the format (for the
// methods that lay lines out by format), strides, heights, widths and the
// capacity test. Returns ORV_OK and fills `geometry` and `format`.
ORV_STATUS check_and_query(OFS_HANDLE field, OFS_HANDLE frame,
                           ReadsFormat reads_format, Geometry &geometry,
                           uint32_t &format) {
    const bool field_valid = buffer_is_valid(field);
    if (!field_valid) return ORV_ERROR_BAD_PARAM;
    // Fetched, deliberately not tested: only the dispatcher refuses an
    // invalid frame. The field's answer is tested a second time instead.
    (void)buffer_is_valid(frame);
    if (!field_valid) return ORV_ERROR_BAD_PARAM;

    geometry.field = query_address(field);
    if (geometry.field == nullptr) return ORV_ERROR_BAD_PARAM;
    geometry.frame = query_address(frame);
    if (geometry.frame == nullptr) return ORV_ERROR_BAD_PARAM;
    if (reads_format == ReadsFormat::yes) {
        format = query_u32(field, OFS_FORMAT);
        if (format == 0) return ORV_ERROR_BAD_PARAM;
    }
    geometry.stride = query_u32(field, OFS_STRIDE);
    const uint32_t frame_stride = query_u32(frame, OFS_STRIDE);
    geometry.height = query_u32(field, OFS_HEIGHT);
    const uint32_t frame_height = query_u32(frame, OFS_HEIGHT);
    const uint32_t width = query_u32(field, OFS_WIDTH);
    (void)query_u32(frame, OFS_WIDTH); // asked, never used

    // Pixels against bytes, in wrapping 32-bit products: unit-blind.
    if (2u * width * geometry.height > frame_height * frame_stride)
        return ORV_ERROR_BAD_PARAM;
    return ORV_OK;
}

// Copies one field line of S bytes to the frame, the first or the last
// line without a filled line after it; the frame moves on by S.
void copy_line(const uint8_t *field, uint8_t *&frame, uint32_t stride) {
    std::memmove(frame, field, stride);
    frame = advance(frame, stride);
}

// Parity zero: F0, F0, fill, F1, ..., F(H-1). Non-zero: F0, fill, F1, ...,
// F(H-1), F(H-1). Always 2H lines; each field line but the last goes out
// with the filled line after it as one pair.
ORV_STATUS write_frame(const Geometry &g, uint32_t parity, LineShape shape) {
    if (g.height == 0 || g.stride < shape.least_stride)
        return ORV_ERROR_BAD_PARAM;
    const uint8_t *field = g.field;
    uint8_t *frame = g.frame;
    if (parity == 0) copy_line(field, frame, g.stride);
    for (uint32_t i = 0; i + 1 < g.height; ++i) {
        const uintptr_t step = shape.pair(field, g.stride, frame);
        field = advance(field, step);
        frame = advance(frame, g.stride + step);
    }
    copy_line(field, frame, g.stride);
    if (parity != 0) copy_line(field, frame, g.stride);
    return ORV_OK;
}

} // namespace

ORV_STATUS field_to_frame(OFS_HANDLE field, OFS_HANDLE frame, uint32_t parity,
                          LineShape shape) {
    Geometry geometry{};
    uint32_t format = 0;
    const ORV_STATUS status =
        check_and_query(field, frame, ReadsFormat::no, geometry, format);
    if (status != ORV_OK) return status;
    return write_frame(geometry, parity, shape);
}

ORV_STATUS field_to_frame_by_format(OFS_HANDLE field, OFS_HANDLE frame,
                                    uint32_t parity, ChooseShape choose) {
    Geometry geometry{};
    uint32_t format = 0;
    const ORV_STATUS status =
        check_and_query(field, frame, ReadsFormat::yes, geometry, format);
    if (status != ORV_OK) return status;
    const ShapeChoice choice = choose(format);
    if (!choice.handled) return ORV_ERROR_NOT_SUPPORTED;
    return write_frame(geometry, parity, choice.shape);
}

} // namespace deinterlace
} // namespace orv
