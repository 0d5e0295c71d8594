// The AVX-512 conversion table: the plain rows compiled for AVX-512BW, each
// finished after the bulk kernel that this instruction set gives it.
#include "avx512/grey.h"
#include "avx512/colour.h"
#include "avx512/yuv422.h"

#include "kernel_table.h"
