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
 *
 * Conversions that reach past the image, which buffers must allow for:
 *  - Y12P and YUV 4:2:2 sources go by pairs of pixels: an odd width
 *    converts one pixel more per line, reading and writing past the width,
 *    and (YUV) starts the next destination line one pixel further on.
 *  - YUV 4:2:2 sources are read as one packed run: the source stride is
 *    not used.
 *  - RGB30 into RGB48 takes green and blue from the next source pixel, so
 *    each line reads one pixel past its end.
 *  - Row steps are 32-bit differences of stride and row length, counted in
 *    the row's word size: give 16- and 32-bit formats strides that are
 *    multiples of their word size.
 *
 * The X byte of XBGR32, BGRX32, XRGB32 and RGBX32 destinations keeps its
 * value from colour and YUV 4:2:2 sources (grey sources write it). When
 * the library runs at the AVX2 level (orvane/version.h), colour and
 * YUV 4:2:2 sources into these four formats read each X byte and write the
 * same value back, so no other thread may write those bytes during the
 * call; every other level never touches them.
 */
ORV_API ORV_STATUS OVC_Convert(OFS_HANDLE source, OFS_HANDLE destination);

ORV_EXTERN_C_END

#endif /* ORVANE_CONVERT_H */
