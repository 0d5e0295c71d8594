// The AVX2 conversion table: the plain rows compiled for AVX2, each
// finished after the bulk kernel that this instruction set gives it.
#include "avx2/grey.h"
#include "avx2/colour.h"
#include "avx2/yuv422.h"

#include "kernel_table.h"
