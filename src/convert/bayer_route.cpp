// Routing of Bayer sources to the demosaic routines (not routed yet).
#include "frame.h"

namespace orv {

ORV_STATUS convert_from_bayer(const ConversionJob &, uint32_t, OFS_HANDLE,
                              OFS_HANDLE) {
    return ORV_ERROR_NOT_SUPPORTED;
}

} // namespace orv
