// The avx512 bulk kernels of the yuv422 rows. Included by kernels_avx512.cpp only,
// before the table is built.
