// The AVX2 bulk kernels of the grey rows: those of grey_bulk.h. Included
// by kernels_avx2.cpp only, before the table is built.
#include "../grey_bulk.h"
