/*
 * OrvaneImage field-to-frame de-interlacing.
 *
 * A field holds every second line of an interlaced frame. These routines
 * write 2 x H lines into the frame buffer, each as long as the field's
 * stride, placing the field's lines on alternate frame lines and filling
 * the lines between by the chosen method.
 */
#ifndef ORVANE_DEINTERLACE_H
#define ORVANE_DEINTERLACE_H

#include <orvane/types.h>

ORV_EXTERN_C_BEGIN

/* Method numbers of OVC_FieldToFrame. */
#define OVC_FIELD_LINEDUP 0u  /* repeat the line above                   */
#define OVC_FIELD_LINEAVE 1u  /* bytewise mean of the lines around       */
#define OVC_FIELD_BILINEAR 2u /* weighted 3 x 2 neighbourhood            */
#define OVC_FIELD_MEDIAN 3u   /* median of the 3 x 2 neighbourhood       */

/* Checks both handles and `method`, then runs that method routine.
 * `parity` zero: the field holds the odd frame lines; non-zero: the even
 * ones. Returns the method routine's status, ORV_ERROR_BAD_PARAM for an
 * invalid handle, or ORV_ERROR_NOT_SUPPORTED for a method above 3. */
ORV_API ORV_STATUS OVC_FieldToFrame(OFS_HANDLE field, OFS_HANDLE frame,
                                    uint32_t method, uint32_t parity);

/* The four methods, callable directly. Each checks the field's validity
 * (the frame's is fetched but not tested: OVC_FieldToFrame tests it),
 * both addresses, and (Bilinear, Median) a non-zero field format, then
 * compares 2 x width x height of the field, in pixels, with the frame's
 * height x stride, in bytes (a 32-bit test that multi-byte formats can pass
 * with a frame too small for the lines written: size frames for 2 x height
 * lines of the field's stride). The frame receives 2 x height lines placed
 * at the field's stride, whatever its own.
 *
 * Bilinear and Median lay lines out by the field's whole format code: Y8,
 * the four 32-bit RGB layouts, BGR24, RGB24 and YUV 4:2:2; any other gives
 * ORV_ERROR_NOT_SUPPORTED. Median's 32-bit lines stop three pixels short,
 * and the lines after each shift 12 bytes to the left.
 *
 * A few filled lines are longer than the stride S: Bilinear and Median
 * 24-bit lines at strides 3 to 5 are six bytes long, Median Y8 lines at a
 * stride of 1 two bytes, and YUV 4:2:2 lines of both methods at an odd
 * stride S + 1 bytes. Such a line reads its whole length from the two
 * field lines around it, so the last one reads past the field's last line:
 * the field must then hold (height - 1) x S plus the line's length. The
 * bytes written past S land on the next frame line, which its copy then
 * overwrites: the frame needs no room beyond its 2 x height lines.
 *
 * ORV_ERROR_BAD_PARAM also for a field height of 0 and for strides below
 * the smallest line a layout handles (Bilinear: Y8 below 2; Median: Y8 of
 * 0; both: 24-bit below 3, 32-bit and YUV 4:2:2 below 8). Nothing is
 * written on any failure. */
ORV_API ORV_STATUS OVC_FieldToFrame_LineDup(OFS_HANDLE field, OFS_HANDLE frame,
                                            uint32_t parity);
ORV_API ORV_STATUS OVC_FieldToFrame_LineAve(OFS_HANDLE field, OFS_HANDLE frame,
                                            uint32_t parity);
ORV_API ORV_STATUS OVC_FieldToFrame_Bilinear(OFS_HANDLE field,
                                             OFS_HANDLE frame,
                                             uint32_t parity);
ORV_API ORV_STATUS OVC_FieldToFrame_Median(OFS_HANDLE field, OFS_HANDLE frame,
                                           uint32_t parity);

/* Mean (rounded down) of the third and fourth smallest of six bytes; only
 * the low 8 bits of each argument count. */
ORV_API uint32_t ORV_median6(uint32_t x0, uint32_t x1, uint32_t x2,
                             uint32_t x3, uint32_t x4, uint32_t x5);

ORV_EXTERN_C_END

#endif /* ORVANE_DEINTERLACE_H */
