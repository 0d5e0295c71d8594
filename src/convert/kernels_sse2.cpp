// The SSE2 conversion table: the plain rows compiled for SSE2, each
// finished after the bulk kernel that this instruction set gives it.
#include "sse2/grey.h"
#include "sse2/yuv422.h"

#include "kernel_table.h"
