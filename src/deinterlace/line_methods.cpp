// LineDup and LineAve: filled lines made byte by byte over the whole
// stride, whatever the pixel format (the format is never asked).
#include "frame.h"

#include <cstring>

namespace orv {
namespace deinterlace {
namespace {

// A second copy of the line above.
uintptr_t duplicate_line(const uint8_t *above, uint32_t stride, uint8_t *out) {
    std::memmove(out, above, stride);
    return stride;
}

// The mean, rounded down, of each byte and the byte below it. The bytes of
// a multi-byte sample are averaged separately, with no carry between them.
uintptr_t average_lines(const uint8_t *above, uint32_t stride, uint8_t *out) {
    const uint8_t *below = advance(above, stride);
    for (uint32_t b = 0; b < stride; ++b)
        out[b] = static_cast<uint8_t>((above[b] + below[b]) >> 1);
    return stride;
}

} // namespace
} // namespace deinterlace
} // namespace orv

extern "C" ORV_API ORV_STATUS OVC_FieldToFrame_LineDup(OFS_HANDLE field,
                                                      OFS_HANDLE frame,
                                                      uint32_t parity) {
    using namespace orv::deinterlace;
    return field_to_frame(field, frame, parity, {duplicate_line, 0});
}

extern "C" ORV_API ORV_STATUS OVC_FieldToFrame_LineAve(OFS_HANDLE field,
                                                      OFS_HANDLE frame,
                                                      uint32_t parity) {
    using namespace orv::deinterlace;
    return field_to_frame(field, frame, parity, {average_lines, 0});
}
