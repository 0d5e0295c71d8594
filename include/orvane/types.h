/*
 * OrvaneImage shared vocabulary: the buffer handle, the buffer parameter ids,
 * status codes, pixel format codes and Bayer settings.
 *
 * Everything here is a plain constant or typedef, usable from C and C++.
 * Every other public header of the library includes this one.
 */
#ifndef ORVANE_TYPES_H
#define ORVANE_TYPES_H

#include <stdint.h>

/* Symbols marked ORV_API are the library's whole public ABI; everything
 * else is built with hidden visibility. */
#if defined(__GNUC__)
#define ORV_API __attribute__((visibility("default")))
#else
#define ORV_API
#endif

#ifdef __cplusplus
#define ORV_EXTERN_C_BEGIN extern "C" {
#define ORV_EXTERN_C_END }
#else
#define ORV_EXTERN_C_BEGIN
#define ORV_EXTERN_C_END
#endif

/* A buffer handle: an opaque, pointer-width value issued by the buffer
 * library. The image library only passes it back to
 * OFS_BufferParameterGet. */
typedef uintptr_t OFS_HANDLE;

/* Status codes returned by every routine that reports a status. */
typedef uint32_t ORV_STATUS;
#define ORV_OK 0u
#define ORV_ERROR_NOT_IMPLEMENTED 3u /* Bayer method/phase not offered   */
#define ORV_ERROR_OPEN_FAILED 5u     /* output file could not be opened */
#define ORV_ERROR_BAD_PARAM 8u       /* invalid handle, null, too small */
#define ORV_ERROR_NOT_SUPPORTED 10u  /* format pair, file type, method  */
#define ORV_ERROR_BAD_FORMAT 12u     /* TIFF writer: format not written */
#define ORV_ERROR_WRITE_FAILED 15u   /* a file write came up short      */
#define ORV_ERROR_CLOSE_FAILED 17u   /* closing the file failed         */

/* Buffer parameter ids understood by OFS_BufferParameterGet. The value
 * written is 32 bits wide except for OFS_START_ADDR and OFS_BUFFER_VALID,
 * which are pointer-width (uintptr_t). */
#define OFS_WIDTH 1u        /* uint32_t: width in pixels                  */
#define OFS_HEIGHT 2u       /* uint32_t: height in lines                  */
#define OFS_START_ADDR 3u   /* uintptr_t: address of the first pixel      */
#define OFS_STRIDE 4u       /* uint32_t: bytes from one line to the next  */
#define OFS_FORMAT 7u       /* uint32_t: pixel format code                */
#define OFS_BAYER_METHOD 9u /* uint32_t: demosaic method of a Bayer image */
#define OFS_BAYER_PHASE 10u /* uint32_t: colour phase of a Bayer image    */
#define OFS_BUFFER_VALID 11u /* uintptr_t: non-zero for a usable buffer   */

/* Pixel formats. Only the low byte takes part in conversion. Byte formats
 * are named in memory order (BGRX32 = bytes B, G, R, X); packed words from
 * their top bit down (RGB16 = R in bits 11-15). Multi-byte words are
 * little-endian. */
#define ORV_FORMAT_Y8 0xC0022601u     /* 1 byte grey                          */
#define ORV_FORMAT_Y16 0xC0022602u    /* u16 grey, 16 significant bits        */
#define ORV_FORMAT_Y32 0xC0022603u    /* u32 grey; destination only           */
#define ORV_FORMAT_04 0xC0022604u     /* never accepted by OVC_Convert        */
#define ORV_FORMAT_RGB15 0xC0022605u  /* u16: R 10-14, G 5-9, B 0-4           */
#define ORV_FORMAT_RGB16 0xC0022606u  /* u16: R 11-15, G 5-10, B 0-4          */
#define ORV_FORMAT_XBGR32 0xC0022607u /* bytes X, B, G, R                     */
#define ORV_FORMAT_BGRX32 0xC0022608u /* bytes B, G, R, X                     */
#define ORV_FORMAT_BGR48 0xC0022609u  /* three u16: B, G, R                   */
#define ORV_FORMAT_BGR15 0xC002260Au  /* u16: B 10-14, G 5-9, R 0-4           */
#define ORV_FORMAT_BGR16 0xC002260Bu  /* u16: B 11-15, G 5-10, R 0-4          */
#define ORV_FORMAT_XRGB32 0xC002260Cu /* bytes X, R, G, B                     */
#define ORV_FORMAT_RGBX32 0xC002260Du /* bytes R, G, B, X                     */
#define ORV_FORMAT_RGB48 0xC002260Eu  /* three u16: R, G, B                   */
#define ORV_FORMAT_RGB30 0xC002260Fu  /* u32, three 10-bit fields, B lowest   */
#define ORV_FORMAT_BGR30 0xC0022610u  /* u32, three 10-bit fields, R lowest   */
#define ORV_FORMAT_BGR24 0xC0022611u  /* bytes B, G, R                        */
#define ORV_FORMAT_RGB24 0xC0022612u  /* bytes R, G, B                        */
#define ORV_FORMAT_Y10 0xC0022613u    /* u16 grey, 10 significant bits        */
#define ORV_FORMAT_Y12 0xC0022614u    /* u16 grey, 12 significant bits        */
#define ORV_FORMAT_Y14 0xC0022615u    /* u16 grey, 14 significant bits        */
#define ORV_FORMAT_BAY8 0xC0022616u   /* Bayer mosaic, 8 bits                 */
#define ORV_FORMAT_BAY10 0xC0022617u  /* Bayer mosaic in u16, depth 10        */
#define ORV_FORMAT_BAY12 0xC0022618u  /* Bayer mosaic in u16, depth 12        */
#define ORV_FORMAT_BAY14 0xC0022619u  /* Bayer mosaic in u16, depth 14        */
#define ORV_FORMAT_BAY16 0xC002261Au  /* Bayer mosaic in u16, depth 16        */
#define ORV_FORMAT_Y12P 0xC002261Bu   /* 12-bit grey, 2 pixels in 3 bytes     */
#define ORV_FORMAT_BGR36 0xC002261Cu  /* three u16: B, G, R, 12 bits each     */
#define ORV_FORMAT_1D 0xC002261Du     /* three equal u16; destination only    */
#define ORV_FORMAT_YUV422 0xC002261Eu /* Y0 U Y1 V per pair of pixels         */

/* Bayer demosaic methods (OFS_BAYER_METHOD of a Bayer source). */
#define ORV_BAYER_METHOD_DUP 0x109u /* copy the nearest samples         */
#define ORV_BAYER_METHOD_AVE 0x209u /* average the neighbours           */
#define ORV_BAYER_METHOD_MED 0x309u /* median of four at red/blue sites */

/* Bayer colour phases (OFS_BAYER_PHASE): colours of the top-left cell,
 * line 0 then line 1. */
#define ORV_BAYER_PHASE_A 0x10Au /* R G / G B */
#define ORV_BAYER_PHASE_B 0x20Au /* G R / B G */
#define ORV_BAYER_PHASE_C 0x30Au /* G B / R G */
#define ORV_BAYER_PHASE_D 0x40Au /* B G / G R */

#endif /* ORVANE_TYPES_H */
