// The AVX-512 bulk kernels of the colour rows: those of colour_bulk.h.
// Included by kernels_avx512.cpp only, before the table is built.
#include "../colour_bulk.h"
