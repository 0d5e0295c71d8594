/*
 * OrvaneBuffer: the buffer library that the image library asks about every
 * buffer it touches (liborvanebuffer).
 *
 * A buffer here is a descriptor only: the caller owns the pixel memory and
 * records its address, geometry, pixel format and Bayer settings in the
 * descriptor. The image library reads them through OFS_BufferParameterGet,
 * which it resolves through the dynamic linker, so a capture kit's own
 * buffer library with the same entry point can stand in for this one.
 *
 * Descriptors are independent objects: different threads may create, set,
 * query and destroy different buffers at the same time. Setting a
 * parameter of a buffer while another thread uses it is the caller's race.
 */
#ifndef ORVANE_BUFFER_H
#define ORVANE_BUFFER_H

#include <orvane/types.h>

ORV_EXTERN_C_BEGIN

/* Creates an empty descriptor: valid (OFS_BUFFER_VALID reads 1), every
 * other parameter zero. Returns 0 when memory runs out. */
ORV_API OFS_HANDLE OFS_BufferCreate(void);

/* Creates a descriptor for an image at `address` (not copied, not owned)
 * of the given geometry and format; Bayer method and phase read zero.
 * Returns 0 when memory runs out. */
ORV_API OFS_HANDLE OFS_BufferCreateImage(void *address, uint32_t width,
                                         uint32_t height, uint32_t stride,
                                         uint32_t format);

/* Frees a descriptor made by OFS_BufferCreate or OFS_BufferCreateImage.
 * The pixel memory is the caller's and is left alone. 0 is ignored. */
ORV_API void OFS_BufferDestroy(OFS_HANDLE buffer);

/* Writes one parameter into `*value`: a uintptr_t for OFS_START_ADDR and
 * OFS_BUFFER_VALID, a uint32_t for OFS_WIDTH, OFS_HEIGHT, OFS_STRIDE,
 * OFS_FORMAT, OFS_BAYER_METHOD and OFS_BAYER_PHASE.
 * Returns ORV_OK, or ORV_ERROR_BAD_PARAM without writing anything for a
 * zero handle, a null `value` or an unknown id. */
ORV_API ORV_STATUS OFS_BufferParameterGet(OFS_HANDLE buffer,
                                          uint32_t parameter, void *value);

/* Sets one parameter from `*value`, read with the same width as
 * OFS_BufferParameterGet writes it. Setting OFS_BUFFER_VALID to 0 makes
 * every image routine refuse the buffer with ORV_ERROR_BAD_PARAM.
 * Returns ORV_OK, or ORV_ERROR_BAD_PARAM for a zero handle, a null
 * `value` or an unknown id. */
ORV_API ORV_STATUS OFS_BufferParameterSet(OFS_HANDLE buffer,
                                          uint32_t parameter,
                                          const void *value);

ORV_EXTERN_C_END

#endif /* ORVANE_BUFFER_H */
