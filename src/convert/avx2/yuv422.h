// The avx2 bulk kernels of the yuv422 rows. Included by kernels_avx2.cpp only,
// before the table is built.
