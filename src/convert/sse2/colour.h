// The sse2 bulk kernels of the colour rows. Included by kernels_sse2.cpp only,
// before the table is built.
