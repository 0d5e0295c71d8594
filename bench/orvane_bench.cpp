// Throughput of representative conversions, demosaics and de-interlacers on
// a 1920 x 1080 image, reported in pixels per second.
//
//   build/bench/orvane_bench --benchmark_filter=Convert
#include <orvaneimage.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

constexpr uint32_t kWidth = 1920;
constexpr uint32_t kHeight = 1080;

uint32_t bytes_per_pixel(uint32_t format) {
    switch (format & 0xFF) {
    case 0x01: case 0x16: return 1;
    case 0x03: case 0x07: case 0x08: case 0x0C: case 0x0D: case 0x0F:
    case 0x10: return 4;
    case 0x09: case 0x0E: case 0x1C: case 0x1D: return 6;
    case 0x11: case 0x12: return 3;
    default: return 2;
    }
}

// A source and a destination image with their buffer handles.
struct ImagePair {
    std::vector<uint8_t> src, dst;
    OFS_HANDLE src_handle, dst_handle;

    ImagePair(uint32_t src_format, uint32_t dst_format, uint32_t dst_height) {
        const uint32_t src_stride = kWidth * bytes_per_pixel(src_format);
        const uint32_t dst_stride = kWidth * bytes_per_pixel(dst_format);
        src.resize(size_t(src_stride) * (kHeight + 1));
        dst.resize(size_t(dst_stride) * dst_height);
        uint32_t x = 12345;
        for (auto &b : src) b = uint8_t((x = x * 1103515245u + 12345u) >> 24);
        src_handle = OFS_BufferCreateImage(src.data(), kWidth, kHeight,
                                           src_stride, src_format);
        dst_handle = OFS_BufferCreateImage(dst.data(), kWidth, dst_height,
                                           dst_stride, dst_format);
    }
    ~ImagePair() {
        OFS_BufferDestroy(src_handle);
        OFS_BufferDestroy(dst_handle);
    }
};

void Convert(benchmark::State &state, uint32_t src_format,
             uint32_t dst_format, uint32_t method) {
    ImagePair images(src_format, dst_format, kHeight + 1);
    const uint32_t phase = ORV_BAYER_PHASE_A;
    OFS_BufferParameterSet(images.src_handle, OFS_BAYER_METHOD, &method);
    OFS_BufferParameterSet(images.src_handle, OFS_BAYER_PHASE, &phase);
    for (auto _ : state) {
        ORV_STATUS status = OVC_Convert(images.src_handle, images.dst_handle);
        benchmark::DoNotOptimize(status);
        if (status != ORV_OK) {
            state.SkipWithError("conversion not available");
            break;
        }
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kWidth * kHeight);
}

void FieldToFrame(benchmark::State &state, uint32_t format, uint32_t method) {
    ImagePair images(format, format, 2 * kHeight);
    for (auto _ : state) {
        ORV_STATUS status = OVC_FieldToFrame(images.src_handle,
                                             images.dst_handle, method, 0);
        benchmark::DoNotOptimize(status);
        if (status != ORV_OK) {
            state.SkipWithError("de-interlace not available");
            break;
        }
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kWidth * kHeight);
}

constexpr uint32_t kNoMethod = 0;

BENCHMARK_CAPTURE(Convert, Y8_to_BGRX32, ORV_FORMAT_Y8, ORV_FORMAT_BGRX32, kNoMethod);
BENCHMARK_CAPTURE(Convert, Y8_to_BGR24, ORV_FORMAT_Y8, ORV_FORMAT_BGR24, kNoMethod);
BENCHMARK_CAPTURE(Convert, Y16_to_Y8, ORV_FORMAT_Y16, ORV_FORMAT_Y8, kNoMethod);
BENCHMARK_CAPTURE(Convert, Y12_to_RGB16, ORV_FORMAT_Y12, ORV_FORMAT_RGB16, kNoMethod);
BENCHMARK_CAPTURE(Convert, BGR24_to_BGRX32, ORV_FORMAT_BGR24, ORV_FORMAT_BGRX32, kNoMethod);
BENCHMARK_CAPTURE(Convert, BGR24_to_RGB16, ORV_FORMAT_BGR24, ORV_FORMAT_RGB16, kNoMethod);
BENCHMARK_CAPTURE(Convert, BGRX32_to_BGR24, ORV_FORMAT_BGRX32, ORV_FORMAT_BGR24, kNoMethod);
BENCHMARK_CAPTURE(Convert, YUV422_to_BGRX32, ORV_FORMAT_YUV422, ORV_FORMAT_BGRX32, kNoMethod);
BENCHMARK_CAPTURE(Convert, YUV422_to_RGB24, ORV_FORMAT_YUV422, ORV_FORMAT_RGB24, kNoMethod);
BENCHMARK_CAPTURE(Convert, BAY8_to_BGR24_dup, ORV_FORMAT_BAY8, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_DUP);
BENCHMARK_CAPTURE(Convert, BAY8_to_BGR24_ave, ORV_FORMAT_BAY8, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_AVE);
BENCHMARK_CAPTURE(Convert, BAY8_to_BGR24_med, ORV_FORMAT_BAY8, ORV_FORMAT_BGR24, ORV_BAYER_METHOD_MED);
BENCHMARK_CAPTURE(Convert, BAY12_to_BGRX32_ave, ORV_FORMAT_BAY12, ORV_FORMAT_BGRX32, ORV_BAYER_METHOD_AVE);
BENCHMARK_CAPTURE(FieldToFrame, Y8_LineAve, ORV_FORMAT_Y8, OVC_FIELD_LINEAVE);
BENCHMARK_CAPTURE(FieldToFrame, BGRX32_Bilinear, ORV_FORMAT_BGRX32, OVC_FIELD_BILINEAR);
BENCHMARK_CAPTURE(FieldToFrame, YUV422_Median, ORV_FORMAT_YUV422, OVC_FIELD_MEDIAN);

} // namespace
