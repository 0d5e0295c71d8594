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

/* Both file writers open `path` with fopen(path, "wb"), creating or
 * truncating it; a null `path` returns ORV_ERROR_OPEN_FAILED like any path
 * that cannot be opened, without reaching fopen. They write through the
 * standard I/O library and leave signal dispositions alone: writing into a
 * pipe or FIFO whose reader has gone raises SIGPIPE, and writing past a
 * file-size limit (RLIMIT_FSIZE) raises SIGXFSZ, and either ends the
 * process unless the caller ignores or handles it. Ignored, the write
 * fails instead and the call returns ORV_ERROR_WRITE_FAILED (a raw dump's
 * write came up short) or ORV_ERROR_CLOSE_FAILED (the bytes still buffered
 * at the close could not be written). A TIFF stream left open by a failure
 * is flushed at exit, so the signal can come then. */

/* Saves `buffer` at `path` as a raw dump (OVC_FILE_RAW) or a TIFF file
 * (OVC_FILE_TIFF, see OVC_FileWriteTiff).
 *
 * A raw dump holds height x stride bytes from the first pixel on, line
 * padding included; the count is a 32-bit product and wraps. Returns
 * ORV_ERROR_BAD_PARAM for an invalid buffer or (raw) a null address,
 * ORV_ERROR_NOT_SUPPORTED for any other file type (no file is touched),
 * ORV_ERROR_OPEN_FAILED, ORV_ERROR_WRITE_FAILED for a short write (the file
 * is closed and keeps what was written), ORV_ERROR_CLOSE_FAILED, and on
 * success whatever the buffer library returned for the stride query
 * (ORV_OK from a library that answers normally). */
ORV_API ORV_STATUS OVC_FileWrite(OFS_HANDLE buffer, const char *path,
                                 uint32_t file_type);

/* Saves `buffer` at `path` as an uncompressed, single-strip, big-endian
 * TIFF file. Formats are matched by their full 32-bit code (not only the
 * low byte). Only ORV_FORMAT_Y8 and ORV_FORMAT_BGR24 give finished files:
 *  - ImageWidth and ImageLength hold the low 16 bits of the geometry.
 *  - Each line contributes `width` bytes in memory order. A BGR24 file thus
 *    holds the first third of each line's pixel bytes, in B, G, R order,
 *    although it declares RGB and width x height x 3 strip bytes.
 * Other formats stop part-way:
 *  - ORV_FORMAT_Y16 returns ORV_ERROR_BAD_PARAM after ten directory entries,
 *    ORV_FORMAT_RGB24 returns ORV_ERROR_BAD_PARAM after 50 bytes, and any
 *    other format ORV_ERROR_BAD_FORMAT after the 8-byte header.
 *  - A stream that cannot tell its position (a pipe) returns
 *    ORV_ERROR_BAD_PARAM at the first offset it needs.
 * On these failures the stream is NOT closed: the partial file stays open,
 * its buffered bytes unflushed, until the process exits (a normal exit
 * flushes them; _exit or a crash loses them). Each such call keeps one
 * stream and its descriptor for the life of the process. Only the success
 * path closes the file; a failing close returns ORV_ERROR_CLOSE_FAILED.
 * Also ORV_ERROR_BAD_PARAM for an invalid buffer or a zero format (no file
 * touched) and ORV_ERROR_OPEN_FAILED. The first-pixel address is not
 * checked: it must be readable whenever width and height are non-zero. */
ORV_API ORV_STATUS OVC_FileWriteTiff(OFS_HANDLE buffer, const char *path);

ORV_EXTERN_C_END

#endif /* ORVANE_FILEIO_H */
