// OVC_FieldToFrame: tests both buffers' validity, then hands the call to
// the method routine it names; the routines themselves never test the
// frame's validity.
#include <orvane/deinterlace.h>

#include "../common/query.h"

extern "C" ORV_API ORV_STATUS OVC_FieldToFrame(OFS_HANDLE field,
                                               OFS_HANDLE frame,
                                               uint32_t method,
                                               uint32_t parity) {
    using orv::buffer_is_valid;
    if (!buffer_is_valid(field)) return ORV_ERROR_BAD_PARAM;
    if (!buffer_is_valid(frame)) return ORV_ERROR_BAD_PARAM;
    switch (method) {
    case OVC_FIELD_LINEDUP: return OVC_FieldToFrame_LineDup(field, frame, parity);
    case OVC_FIELD_LINEAVE: return OVC_FieldToFrame_LineAve(field, frame, parity);
    case OVC_FIELD_BILINEAR: return OVC_FieldToFrame_Bilinear(field, frame, parity);
    case OVC_FIELD_MEDIAN: return OVC_FieldToFrame_Median(field, frame, parity);
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}
