// The AVX2 conversion table: the plain rows compiled for AVX2.
#include "kernel_table.h"
