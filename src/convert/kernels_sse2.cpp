// The SSE2 conversion table: the plain rows compiled for SSE2, after the
// bulk kernels of this instruction set.
#include "sse2/yuv422.h"

#include "kernel_table.h"
