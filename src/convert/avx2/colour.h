// The avx2 bulk kernels of the colour rows. Included by kernels_avx2.cpp only,
// before the table is built.
