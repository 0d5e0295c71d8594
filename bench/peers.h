// The open-source peers timed beside the library: adapters that run one
// OpenCV or libyuv call on a row's images, and the macros that list them
// in the row table. A peer library that was not found at configure time
// makes its macros expand to nothing, so its rows time the library alone.
#pragma once

#include "images.h"

#include <benchmark/benchmark.h>

#include <string>

#if ORV_BENCH_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#if ORV_BENCH_WITH_LIBYUV
#include <libyuv.h>
#endif

namespace orv_bench {

// What a peer call gets: the row's source and destination, a BGRX32
// image for peers that go through an intermediate format, and the path of
// the file that file rows write.
struct PeerImages {
    Plane source, destination, scratch;
    const char *file;
};

// A peer of a row: its name in benchmark names and tables, and the call
// timed, which returns false when the peer did not do the conversion.
struct Peer {
    std::string name;
    bool (*convert)(const PeerImages &images);
};

// Runs the peers the way the library runs (one thread) and records their
// versions with the results.
inline void set_up_peers() {
#if ORV_BENCH_WITH_OPENCV
    cv::setNumThreads(0);
    benchmark::AddCustomContext("opencv", CV_VERSION " (single thread)");
#endif
#if ORV_BENCH_WITH_LIBYUV
    benchmark::AddCustomContext("libyuv", std::to_string(LIBYUV_VERSION));
#endif
}

#if ORV_BENCH_WITH_OPENCV
inline cv::Mat opencv_view(const Plane &plane) {
    const uint32_t sample = bytes_per_sample(plane.format);
    const int depth = sample == 2 ? CV_16U : CV_8U;
    const int channels = int(bytes_per_pixel(plane.format) / sample);
    return cv::Mat(plane.height, plane.width, CV_MAKETYPE(depth, channels),
                   plane.data, size_t(plane.stride));
}

template <int Code>
bool opencv_cvt_color(const PeerImages &images) {
    cv::Mat destination = opencv_view(images.destination);
    cv::cvtColor(opencv_view(images.source), destination, Code);
    // cvtColor swaps in a new image when the destination's size or type
    // does not fit the conversion; that would time an allocation.
    return destination.data == images.destination.data;
}

// A 16-bit mosaic demosaiced at 16 bits, then narrowed to the 8-bit
// destination by a second pass that divides by 2^Shift, as a pipeline on
// OpenCV gets 8-bit colour from a 10- to 16-bit sensor.
template <int Code, int Shift>
bool opencv_demosaic_then_narrow(const PeerImages &images) {
    static thread_local cv::Mat wide; // allocated by the first call only
    cv::cvtColor(opencv_view(images.source), wide, Code);
    cv::Mat destination = opencv_view(images.destination);
    wide.convertTo(destination, CV_8U, 1.0 / (1 << Shift));
    return destination.data == images.destination.data;
}

// OPENCV_PEER(GRAY2BGRA): cv::cvtColor with cv::COLOR_GRAY2BGRA.
#define OPENCV_PEER(code) \
    ::orv_bench::Peer{"opencv_" #code, ::orv_bench::opencv_cvt_color<cv::COLOR_##code>},
// OPENCV_PEER_NARROWED(BayerBG2BGR, 4): that demosaic of a 16-bit mosaic,
// then 16 bits to 8 by a shift of 4.
#define OPENCV_PEER_NARROWED(code, shift)                                    \
    ::orv_bench::Peer{"opencv_" #code "+convertTo",                          \
                      ::orv_bench::opencv_demosaic_then_narrow<cv::COLOR_##code, shift>},
#else
#define OPENCV_PEER(code)
#define OPENCV_PEER_NARROWED(code, shift)
#endif

#if ORV_BENCH_WITH_LIBYUV
// The shape of libyuv's packed-to-packed conversions: source, its stride,
// destination, its stride, width, height; 0 on success.
using LibyuvConvert = int(const uint8_t *, int, uint8_t *, int, int, int);

template <LibyuvConvert *Convert>
bool libyuv_convert(const PeerImages &images) {
    const Plane &from = images.source, &to = images.destination;
    return Convert(from.data, from.stride, to.data, to.stride, from.width,
                   from.height) == 0;
}

// Two conversions through the BGRX32 scratch image, timed as one peer.
template <LibyuvConvert *First, LibyuvConvert *Second>
bool libyuv_convert_via_scratch(const PeerImages &images) {
    const Plane &from = images.source, &via = images.scratch,
                &to = images.destination;
    return First(from.data, from.stride, via.data, via.stride, from.width,
                 from.height) == 0 &&
           Second(via.data, via.stride, to.data, to.stride, from.width,
                  from.height) == 0;
}

// Y16 into Y8: the scale is a 16.16 multiplier, 256 keeps the top 8 bits.
// 16-bit strides count u16 words.
inline bool libyuv_y16_to_y8(const PeerImages &images) {
    const Plane &from = images.source, &to = images.destination;
    libyuv::Convert16To8Plane(reinterpret_cast<const uint16_t *>(from.data),
                              from.stride / 2, to.data, to.stride, 256,
                              from.width, from.height);
    return true;
}

// LIBYUV_PEER(ARGBToRAW): one packed-to-packed libyuv call.
#define LIBYUV_PEER(function) \
    ::orv_bench::Peer{"libyuv_" #function, ::orv_bench::libyuv_convert<libyuv::function>},
// LIBYUV_PEER_VIA_SCRATCH(YUY2ToARGB, ARGBToRGB24): two calls, one peer.
#define LIBYUV_PEER_VIA_SCRATCH(first, second)                              \
    ::orv_bench::Peer{"libyuv_" #first "+" #second,                          \
                      ::orv_bench::libyuv_convert_via_scratch<libyuv::first, \
                                                              libyuv::second>},
// LIBYUV_PEER_CALL("Convert16To8Plane", libyuv_y16_to_y8): an adapter of
// its own for calls of another shape.
#define LIBYUV_PEER_CALL(name, adapter) \
    ::orv_bench::Peer{"libyuv_" name, ::orv_bench::adapter},
#else
#define LIBYUV_PEER(function)
#define LIBYUV_PEER_VIA_SCRATCH(first, second)
#define LIBYUV_PEER_CALL(name, adapter)
#endif

} // namespace orv_bench
