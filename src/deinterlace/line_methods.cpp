// LineDup and LineAve: filled lines made byte by byte over the whole
// stride, whatever the pixel format (the format is never asked). LineAve's
// mean line comes from the kernel table of the level in use.
#include "frame.h"
#include "kernels.h"

#include <cstring>

namespace orv {
namespace deinterlace {
namespace {

// A second copy of the line above.
uintptr_t duplicate_line(const uint8_t *above, uint32_t stride, uint8_t *out) {
    std::memmove(out, above, stride);
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
    return field_to_frame(field, frame, parity, {kernels_in_use().average, 0});
}
