// The AVX-512 bulk kernels of the YUV 4:2:2 rows: those of yuv422_bulk.h.
// Included by kernels_avx512.cpp only, before the table is built.
#include "../yuv422_bulk.h"
