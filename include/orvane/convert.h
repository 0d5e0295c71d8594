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
 * Conversions that reach past the image, which buffers must allow for
 * (W, H: the source's width and height; S: a buffer's own stride; P: the
 * destination's bytes per pixel):
 *  - Y8 into Y8 and Y16 into Y16 with equal strides and heights copy
 *    H x S bytes (a 32-bit product) in one block, with no capacity test
 *    and whatever the widths: the last line's padding is read and written.
 *  - Y8 into Y8 otherwise steps the destination by S less the
 *    destination's own width after each line of W bytes: line y is written
 *    at y x (S + W - destination width), the last one ending at
 *    (H - 1) x (S + W - destination width) + W, which lies past S x H
 *    when the destination is narrower than the source.
 *  - Y12P sources go by pairs of pixels. With an odd W each line converts
 *    W + 1 pixels, reading 3 x (W + 1) / 2 bytes, and both row steps are
 *    measured from where the pairs stopped, so the lines drift: source
 *    line y starts at y x (S + 2), destination line y at y x (S + P). The
 *    source must hold (H - 1) x (S + 2) + 3 x (W + 1) / 2 bytes and the
 *    destination (H - 1) x (S + P) + (W + 1) x P, more than S x H although
 *    the capacity test passed.
 *  - YUV 4:2:2 sources are read as one packed run, the source stride
 *    unused: 2 x W bytes a line, W rounded up to even. With an odd W each
 *    line writes W + 1 pixels and destination line y starts at
 *    y x (S + P), so the destination must hold (H - 1) x (S + P) +
 *    (W + 1) x P bytes.
 *  - RGB30 into RGB48 takes green and blue from the next source pixel, so
 *    each line reads one pixel (4 bytes) past its end.
 *  - Bayer sources of height 0 pass the capacity test and still reach
 *    their demosaic routine (orvane/bayer.h), which writes W pixels of
 *    line 0 (dup) or of lines 0 and 1 (ave, med), line 1 at the
 *    destination's stride, and reads source lines 0 and 1 with the reads
 *    past each line that orvane/bayer.h lists.
 *  - Row steps are 32-bit differences of stride and row length, counted in
 *    the row's word size: give 16- and 32-bit formats strides that are
 *    multiples of their word size (the extents above assume so).
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
