/*
 * OrvaneImage Bayer demosaicing: the 81 routines
 * OVC_<BAY8|BAYn>_to_<output>_<method>_<phase>.
 *
 * Each routine turns the Bayer mosaic of `source` (one colour sample per
 * site) into full colour in `destination`. The source's width and height
 * drive the whole walk; the destination must hold that many lines of that
 * many pixels at its own stride (its width, height and format are never
 * read). OVC_Convert picks the routine from the source's Bayer method and
 * phase, but every routine can also be called directly.
 *
 *   OVC_BAY8_to_<output>_<method>_<phase>(source, destination)
 *       8-bit mosaic, one byte per site.
 *   OVC_BAYn_to_<output>_<method>_<phase>(source, destination, depth)
 *       mosaic of 16-bit little-endian words holding `depth` significant
 *       bits (10, 12, 14 or 16); samples are narrowed to 8-bit channels by
 *       a right shift of depth - 8.
 *
 * Returns ORV_OK once the image is written; ORV_ERROR_BAD_PARAM, with
 * nothing written, when either buffer is not valid or, for BAYn, when the
 * depth is 8. Nothing else is checked: callers pass a width of at least 2
 * (and, for ave and med, a height of at least 2, or room for a second
 * line). The fourth byte of every BGRX32 and RGBX32 pixel keeps its value.
 * When the library runs at the AVX2 level (orvane/version.h), the BGRX32
 * and RGBX32 routines read that byte and write the same value back over
 * most of each line, so no other thread may write those bytes during the
 * call; every other level never touches them.
 *
 * Reads beyond the image, which the source buffer must allow: line 0 always
 * takes colours from line 1, so a one-line image reads one source stride
 * further; with an odd width, ave and med read the sample that follows
 * each line, and the RGB16 med_C routines read up to two samples past the
 * line below.
 *
 * A height of 0 or 1 is not refused: dup writes line 0, and ave and med
 * write lines 0 and 1 (line 1 one destination stride on), all three
 * reading source lines 0 and 1. OVC_Convert hands a Bayer source of
 * height 0 to its routine, so the same holds there.
 *
 * Every routine is declared below; orvane/bayer_members.h lists the same
 * routines as a macro, for code that wants to iterate over them.
 */
#ifndef ORVANE_BAYER_H
#define ORVANE_BAYER_H

#include <orvane/types.h>
#include <orvane/bayer_members.h>

/* The name and argument list of one routine of the member list, for the
 * library's definitions. */
#define ORV_BAYER_ARGUMENTS_BAY8 (OFS_HANDLE source, OFS_HANDLE destination)
#define ORV_BAYER_ARGUMENTS_BAYn \
    (OFS_HANDLE source, OFS_HANDLE destination, uint32_t depth)
#define ORV_BAYER_SIGNATURE(SRC, OUT, METHOD, PHASE)                        \
    ORV_STATUS OVC_##SRC##_to_##OUT##_##METHOD##_##PHASE                    \
        ORV_BAYER_ARGUMENTS_##SRC

ORV_EXTERN_C_BEGIN

/* 8-bit mosaics, dup */
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_dup_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_dup_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_dup_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_dup_D(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_dup_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_dup_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_dup_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_dup_D(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_dup_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_dup_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_dup_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_dup_D(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGBX32_dup_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGBX32_dup_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGBX32_dup_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGBX32_dup_D(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR16_dup_A(OFS_HANDLE source,
    OFS_HANDLE destination);

/* 8-bit mosaics, ave */
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_ave_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_ave_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_ave_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_ave_D(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_ave_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_ave_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_ave_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_ave_D(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_ave_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_ave_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_ave_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_ave_D(OFS_HANDLE source,
    OFS_HANDLE destination);

/* 8-bit mosaics, med */
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_med_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_med_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_med_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGRX32_med_D(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_med_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_med_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_med_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_BGR24_med_D(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_med_A(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_med_B(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_med_C(OFS_HANDLE source,
    OFS_HANDLE destination);
ORV_API ORV_STATUS OVC_BAY8_to_RGB16_med_D(OFS_HANDLE source,
    OFS_HANDLE destination);

/* n-bit mosaics, dup */
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_dup_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_dup_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_dup_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_dup_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_dup_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_dup_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_dup_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_dup_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_dup_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_dup_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_dup_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_dup_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGBX32_dup_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGBX32_dup_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGBX32_dup_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGBX32_dup_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);

/* n-bit mosaics, ave */
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_ave_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_ave_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_ave_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_ave_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_ave_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_ave_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_ave_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_ave_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_ave_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_ave_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_ave_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_ave_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);

/* n-bit mosaics, med */
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_med_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_med_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_med_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGRX32_med_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_med_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_med_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_med_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_BGR24_med_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_med_A(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_med_B(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_med_C(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);
ORV_API ORV_STATUS OVC_BAYn_to_RGB16_med_D(OFS_HANDLE source,
    OFS_HANDLE destination, uint32_t depth);

ORV_EXTERN_C_END

#endif /* ORVANE_BAYER_H */
