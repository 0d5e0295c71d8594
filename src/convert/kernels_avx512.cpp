// The AVX-512 conversion table: the plain rows compiled for AVX-512BW.
#include "kernel_table.h"
