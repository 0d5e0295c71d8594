// LineDup and LineAve: filled lines made byte by byte over the whole
// stride, whatever the pixel format (the format is never asked). Both take
// their line pairs (a field line's copy and its filled line) from the
// kernel table of the level in use.
#include "frame_assembly.h"
#include "kernels.h"

extern "C" ORV_API ORV_STATUS OVC_FieldToFrame_LineDup(OFS_HANDLE field,
                                                      OFS_HANDLE frame,
                                                      uint32_t parity) {
    using namespace orv::deinterlace;
    return field_to_frame(field, frame, parity,
                          {kernels_in_use().line_twice, 0});
}

extern "C" ORV_API ORV_STATUS OVC_FieldToFrame_LineAve(OFS_HANDLE field,
                                                      OFS_HANDLE frame,
                                                      uint32_t parity) {
    using namespace orv::deinterlace;
    return field_to_frame(field, frame, parity, {kernels_in_use().average, 0});
}
