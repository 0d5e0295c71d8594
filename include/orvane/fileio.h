/*
 * OrvaneImage file output: byte-order writers, raw dumps and TIFF files.
 */
#ifndef ORVANE_FILEIO_H
#define ORVANE_FILEIO_H

#include <stdio.h>

#include <orvane/types.h>

ORV_EXTERN_C_BEGIN

/* File types of OVC_FileWrite. */
#define OVC_FILE_RAW 2u  /* height x stride bytes from the first pixel */
#define OVC_FILE_TIFF 3u /* big-endian single-strip TIFF               */

/* Byte-order writers: put `value` on `stream` one byte at a time and
 * return what the last putc returned (the byte, or EOF). "m" is
 * big-endian, "i" little-endian; the 16- and 8-bit writers use only the
 * low bits of `value`. */
ORV_API int OVC_fput_ui32m(FILE *stream, uint32_t value);
ORV_API int OVC_fput_ui32i(FILE *stream, uint32_t value);
ORV_API int OVC_fput_ui16m(FILE *stream, uint32_t value);
ORV_API int OVC_fput_ui16i(FILE *stream, uint32_t value);
ORV_API int OVC_fput_ui8(FILE *stream, uint32_t value);

/* Saves `buffer` at `path` as a raw dump (OVC_FILE_RAW) or a TIFF file
 * (OVC_FILE_TIFF, see OVC_FileWriteTiff). */
ORV_API ORV_STATUS OVC_FileWrite(OFS_HANDLE buffer, const char *path,
                                 uint32_t file_type);

/* Saves `buffer` at `path` as a TIFF file. */
ORV_API ORV_STATUS OVC_FileWriteTiff(OFS_HANDLE buffer, const char *path);

ORV_EXTERN_C_END

#endif /* ORVANE_FILEIO_H */
