/*
 * OrvaneImage format conversion: OVC_Convert.
 */
#ifndef ORVANE_CONVERT_H
#define ORVANE_CONVERT_H

#include <orvane/types.h>

ORV_EXTERN_C_BEGIN

/*
 * Converts the pixels of `source` into the pixel format of `destination`.
 *
 * The source's width and height drive the conversion; the destination must
 * hold them at its own stride (checked by a 32-bit capacity test that wraps
 * like the rest of the library's size arithmetic). Only the low byte of
 * each format code selects the conversion. Bayer sources are demosaiced by
 * the method and phase recorded in the source buffer.
 *
 * Returns ORV_OK; ORV_ERROR_BAD_PARAM for an invalid handle, a zero format,
 * a null address or a destination that is too small;
 * ORV_ERROR_NOT_SUPPORTED for a format pair that is not converted;
 * ORV_ERROR_NOT_IMPLEMENTED for a Bayer method or phase that the requested
 * output does not offer. Nothing is written on failure.
 */
ORV_API ORV_STATUS OVC_Convert(OFS_HANDLE source, OFS_HANDLE destination);

ORV_EXTERN_C_END

#endif /* ORVANE_CONVERT_H */
