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

/* The four methods, callable directly. */
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
