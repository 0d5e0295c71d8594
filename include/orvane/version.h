/*
 * OrvaneImage: which instruction set the library's kernels run on.
 *
 * The conversion and de-interlace kernels are chosen once, on first use,
 * for the best instruction set that the CPU and the operating system
 * support. The environment variable ORVANE_SIMD caps it: "none" runs the
 * plain C++ kernels everywhere, "sse2", "avx2" and "avx512" allow at most
 * that level. Every level writes exactly the same bytes.
 */
#ifndef ORVANE_VERSION_H
#define ORVANE_VERSION_H

#include <orvane/types.h>

ORV_EXTERN_C_BEGIN

/* The level in use: "none", "sse2", "avx2" or "avx512". The string is
 * static; the first call fixes the level for the life of the process. */
ORV_API const char *OVC_InstructionSet(void);

ORV_EXTERN_C_END

#endif /* ORVANE_VERSION_H */
