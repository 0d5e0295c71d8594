// The AVX-512 bulk kernels of the grey rows: those of grey_bulk.h. Included
// by kernels_avx512.cpp only, before the table is built.
#include "../grey_bulk.h"
