// Threads calling every family at once, each on buffers of its own, from the
// process's very first call into the image library: they race to choose the
// kernel tables, and every result must be the one the same calls give
// afterwards on one thread. scripts/check runs it under ThreadSanitizer.
#include "support/scratch.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>

namespace {

using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

constexpr uint32_t kW = 70, kH = 9;

// The bytes of a call's destination (read after the call), then its status.
Bytes result(ORV_STATUS status, const TestImage &destination) {
    Bytes out = destination.bytes();
    out.push_back(uint8_t(status));
    return out;
}

// One conversion or demosaic (phase C) by OVC_Convert.
Bytes convert(uint32_t from, uint32_t from_bytes, uint32_t to, uint32_t to_bytes,
              uint32_t method, uint32_t seed) {
    TestImage src(from, kW, kH, kW * from_bytes), dst(to, kW, kH, kW * to_bytes);
    src.randomise(seed);
    src.set_bayer(method, ORV_BAYER_PHASE_C);
    return result(OVC_Convert(src.handle(), dst.handle()), dst);
}

Bytes deinterlace(uint32_t format, uint32_t stride, uint32_t method, uint32_t seed) {
    TestImage field(format, kW, kH, stride), frame(format, kW, 2 * kH, stride);
    field.randomise(seed);
    return result(OVC_FieldToFrame(field.handle(), frame.handle(), method, seed & 1), frame);
}

Bytes demosaic_directly(uint32_t seed) {
    TestImage src(ORV_FORMAT_BAY12, kW, kH, kW * 2), dst(ORV_FORMAT_BGR24, kW, kH, kW * 3);
    src.randomise(seed);
    return result(OVC_BAYn_to_BGR24_ave_B(src.handle(), dst.handle(), 12), dst);
}

Bytes write_file(uint32_t file_type, uint32_t seed) {
    TestImage src(ORV_FORMAT_BGR24, kW, kH, kW * 3);
    src.randomise(seed);
    const std::string path = orv_test::scratch_path("thread" + std::to_string(seed));
    const ORV_STATUS status = OVC_FileWrite(src.handle(), path.c_str(), file_type);
    Bytes out = orv_test::read_file(path);
    out.push_back(uint8_t(status));
    return out;
}

// Every family once, on buffers made from `seed`.
std::vector<Bytes> every_family(uint32_t seed) {
    return {
        convert(ORV_FORMAT_Y8, 1, ORV_FORMAT_BGRX32, 4, 0, seed),
        convert(ORV_FORMAT_Y12, 2, ORV_FORMAT_RGB16, 2, 0, seed + 1),
        convert(ORV_FORMAT_Y12P, 2, ORV_FORMAT_BGR24, 3, 0, seed + 2),
        convert(ORV_FORMAT_BGR24, 3, ORV_FORMAT_RGB30, 4, 0, seed + 3),
        convert(ORV_FORMAT_BGR48, 6, ORV_FORMAT_XRGB32, 4, 0, seed + 4),
        convert(ORV_FORMAT_YUV422, 2, ORV_FORMAT_RGB24, 3, 0, seed + 5),
        convert(ORV_FORMAT_BAY8, 1, ORV_FORMAT_BGRX32, 4, ORV_BAYER_METHOD_MED, seed + 6),
        convert(ORV_FORMAT_BAY16, 2, ORV_FORMAT_RGB16, 2, ORV_BAYER_METHOD_DUP, seed + 7),
        demosaic_directly(seed + 8),
        deinterlace(ORV_FORMAT_Y8, kW, OVC_FIELD_LINEDUP, seed + 9),
        deinterlace(ORV_FORMAT_Y8, kW, OVC_FIELD_LINEAVE, seed + 10),
        deinterlace(ORV_FORMAT_BGRX32, 4 * kW, OVC_FIELD_BILINEAR, seed + 11),
        deinterlace(ORV_FORMAT_YUV422, 2 * kW, OVC_FIELD_MEDIAN, seed + 12),
        deinterlace(ORV_FORMAT_BGR24, 3 * kW, OVC_FIELD_MEDIAN, seed + 13),
        write_file(OVC_FILE_RAW, seed + 14),
        write_file(OVC_FILE_TIFF, seed + 15),
        {uint8_t(ORV_median6(seed, seed >> 8, 7, 200, seed >> 16, 90))},
        {Bytes(OVC_InstructionSet(),
               OVC_InstructionSet() + std::strlen(OVC_InstructionSet()))},
    };
}

TEST(Threads, EveryFamilyFromTheFirstCallOnGivesTheSingleThreadedResult) {
    constexpr unsigned kThreads = 4, kRounds = 3;
    std::vector<std::vector<Bytes>> results(kThreads);
    std::atomic<unsigned> waiting{kThreads};
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            // All threads make their first call together.
            waiting.fetch_sub(1);
            while (waiting.load() != 0) std::this_thread::yield();
            for (unsigned round = 0; round < kRounds; ++round)
                results[t] = every_family(100 * t + 1);
        });
    for (auto &thread : threads) thread.join();
    for (unsigned t = 0; t < kThreads; ++t)
        EXPECT_EQ(results[t], every_family(100 * t + 1)) << "thread " << t;
}

} // namespace
