// Yardsticks: the plainest way to do what a de-interlace or file row does,
// timed as that row's peer. The frame makers are plain loops built with
// -O3 -march=native (yardsticks.cpp); the writers are one fopen, fwrite
// and fclose, and libtiff's strip writer when libtiff is installed.
#pragma once

#include "peers.h"

namespace orv_bench {

// The frame of LineDup from the source field: each field line twice, by
// two memcpy.
bool memcpy_per_line(const PeerImages &images);
// The frame of LineAve (field parity zero) from the source field: the
// field lines by memcpy and between them the byte-wise mean, rounded
// down, written as a plain loop.
bool plain_line_average(const PeerImages &images);
// The source image's height x stride bytes as a raw file.
bool fopen_fwrite_fclose(const PeerImages &images);

// A yardstick of this file in a row's peer list.
#define YARDSTICK(function) ::orv_bench::Peer{#function, ::orv_bench::function},

#if ORV_BENCH_WITH_LIBTIFF
// The source 8-bit grey image as a big-endian TIFF file of one
// uncompressed strip, with the same tags as the library's.
bool libtiff_strip(const PeerImages &images);
void record_libtiff_version();
#define LIBTIFF_PEER \
    ::orv_bench::Peer{"libtiff_TIFFWriteEncodedStrip", ::orv_bench::libtiff_strip},
#else
#define LIBTIFF_PEER
#endif

} // namespace orv_bench
