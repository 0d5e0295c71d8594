/*
 * OrvaneImage Bayer demosaicing: the list of demosaic routines.
 *
 * ORV_BAYER_MEMBERS(MEMBER) expands MEMBER(source, output, method, phase)
 * once for every routine OVC_<source>_to_<output>_<method>_<phase> that the
 * library exports, so that the declarations (orvane/bayer.h) and the
 * definitions come from this one list. The gaps are deliberate: RGBX32 is
 * made by dup only, and BGR16 by the 8-bit dup of phase A only.
 *
 *   source: BAY8 (one byte per site) or BAYn (a 16-bit word per site,
 *           10 to 16 significant bits; the routine takes the depth)
 *   output: BGRX32, BGR24, RGB16, RGBX32, BGR16
 *   method: dup, ave, med
 *   phase:  A (R G / G B), B (G R / B G), C (G B / R G), D (B G / G R)
 */
#ifndef ORVANE_BAYER_MEMBERS_H
#define ORVANE_BAYER_MEMBERS_H

#define ORV_BAYER_MEMBERS(MEMBER) \
    MEMBER(BAY8, BGRX32, dup, A) \
    MEMBER(BAY8, BGRX32, dup, B) \
    MEMBER(BAY8, BGRX32, dup, C) \
    MEMBER(BAY8, BGRX32, dup, D) \
    MEMBER(BAY8, BGR24, dup, A) \
    MEMBER(BAY8, BGR24, dup, B) \
    MEMBER(BAY8, BGR24, dup, C) \
    MEMBER(BAY8, BGR24, dup, D) \
    MEMBER(BAY8, RGB16, dup, A) \
    MEMBER(BAY8, RGB16, dup, B) \
    MEMBER(BAY8, RGB16, dup, C) \
    MEMBER(BAY8, RGB16, dup, D) \
    MEMBER(BAY8, RGBX32, dup, A) \
    MEMBER(BAY8, RGBX32, dup, B) \
    MEMBER(BAY8, RGBX32, dup, C) \
    MEMBER(BAY8, RGBX32, dup, D) \
    MEMBER(BAY8, BGR16, dup, A) \
    MEMBER(BAY8, BGRX32, ave, A) \
    MEMBER(BAY8, BGRX32, ave, B) \
    MEMBER(BAY8, BGRX32, ave, C) \
    MEMBER(BAY8, BGRX32, ave, D) \
    MEMBER(BAY8, BGR24, ave, A) \
    MEMBER(BAY8, BGR24, ave, B) \
    MEMBER(BAY8, BGR24, ave, C) \
    MEMBER(BAY8, BGR24, ave, D) \
    MEMBER(BAY8, RGB16, ave, A) \
    MEMBER(BAY8, RGB16, ave, B) \
    MEMBER(BAY8, RGB16, ave, C) \
    MEMBER(BAY8, RGB16, ave, D) \
    MEMBER(BAY8, BGRX32, med, A) \
    MEMBER(BAY8, BGRX32, med, B) \
    MEMBER(BAY8, BGRX32, med, C) \
    MEMBER(BAY8, BGRX32, med, D) \
    MEMBER(BAY8, BGR24, med, A) \
    MEMBER(BAY8, BGR24, med, B) \
    MEMBER(BAY8, BGR24, med, C) \
    MEMBER(BAY8, BGR24, med, D) \
    MEMBER(BAY8, RGB16, med, A) \
    MEMBER(BAY8, RGB16, med, B) \
    MEMBER(BAY8, RGB16, med, C) \
    MEMBER(BAY8, RGB16, med, D) \
    MEMBER(BAYn, BGRX32, dup, A) \
    MEMBER(BAYn, BGRX32, dup, B) \
    MEMBER(BAYn, BGRX32, dup, C) \
    MEMBER(BAYn, BGRX32, dup, D) \
    MEMBER(BAYn, BGR24, dup, A) \
    MEMBER(BAYn, BGR24, dup, B) \
    MEMBER(BAYn, BGR24, dup, C) \
    MEMBER(BAYn, BGR24, dup, D) \
    MEMBER(BAYn, RGB16, dup, A) \
    MEMBER(BAYn, RGB16, dup, B) \
    MEMBER(BAYn, RGB16, dup, C) \
    MEMBER(BAYn, RGB16, dup, D) \
    MEMBER(BAYn, RGBX32, dup, A) \
    MEMBER(BAYn, RGBX32, dup, B) \
    MEMBER(BAYn, RGBX32, dup, C) \
    MEMBER(BAYn, RGBX32, dup, D) \
    MEMBER(BAYn, BGRX32, ave, A) \
    MEMBER(BAYn, BGRX32, ave, B) \
    MEMBER(BAYn, BGRX32, ave, C) \
    MEMBER(BAYn, BGRX32, ave, D) \
    MEMBER(BAYn, BGR24, ave, A) \
    MEMBER(BAYn, BGR24, ave, B) \
    MEMBER(BAYn, BGR24, ave, C) \
    MEMBER(BAYn, BGR24, ave, D) \
    MEMBER(BAYn, RGB16, ave, A) \
    MEMBER(BAYn, RGB16, ave, B) \
    MEMBER(BAYn, RGB16, ave, C) \
    MEMBER(BAYn, RGB16, ave, D) \
    MEMBER(BAYn, BGRX32, med, A) \
    MEMBER(BAYn, BGRX32, med, B) \
    MEMBER(BAYn, BGRX32, med, C) \
    MEMBER(BAYn, BGRX32, med, D) \
    MEMBER(BAYn, BGR24, med, A) \
    MEMBER(BAYn, BGR24, med, B) \
    MEMBER(BAYn, BGR24, med, C) \
    MEMBER(BAYn, BGR24, med, D) \
    MEMBER(BAYn, RGB16, med, A) \
    MEMBER(BAYn, RGB16, med, B) \
    MEMBER(BAYn, RGB16, med, C) \
    MEMBER(BAYn, RGB16, med, D)

#endif /* ORVANE_BAYER_MEMBERS_H */
