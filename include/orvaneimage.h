/*
 * OrvaneImage: pixel-format conversion, Bayer demosaicing, field-to-frame
 * de-interlacing and raw/TIFF file output for capture buffers.
 *
 * Include this header for the whole public API. Buffers are described by
 * the buffer library (orvane/buffer.h); the image routines read every
 * buffer's geometry and format through OFS_BufferParameterGet.
 */
#ifndef ORVANEIMAGE_H
#define ORVANEIMAGE_H

#include <orvane/types.h>
#include <orvane/buffer.h>
#include <orvane/convert.h>
#include <orvane/bayer.h>
#include <orvane/deinterlace.h>
#include <orvane/fileio.h>
#include <orvane/version.h>

#endif /* ORVANEIMAGE_H */
