// The SSE2 bulk kernels of the grey rows: those of grey_bulk.h that need
// no byte shuffle. Included by kernels_sse2.cpp only, before the table is
// built.
#include "../grey_bulk.h"
