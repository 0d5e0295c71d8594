// Conversions from the colour sources (not converted yet).
#include "frame.h"

namespace orv {

ORV_STATUS convert_from_colour(const ConversionJob &, uint32_t) {
    return ORV_ERROR_NOT_SUPPORTED;
}

} // namespace orv
