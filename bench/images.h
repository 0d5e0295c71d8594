// The images every benchmark row works on: their size, how many bytes a
// pixel and a sample of each pixel format take, and a view of one image
// that both the library's buffers and the peers' calls are built from.
#pragma once

#include <cstdint>

namespace orv_bench {

constexpr uint32_t kWidth = 1920;
constexpr uint32_t kHeight = 1080;
constexpr double kPixelsPerImage = double(kWidth) * kHeight;

inline uint32_t bytes_per_pixel(uint32_t format) {
    switch (format & 0xFF) {
    case 0x01: case 0x16: return 1;
    case 0x03: case 0x07: case 0x08: case 0x0C: case 0x0D: case 0x0F:
    case 0x10: return 4;
    case 0x09: case 0x0E: case 0x1C: case 0x1D: return 6;
    case 0x11: case 0x12: return 3;
    default: return 2;
    }
}

// 2 for formats made of u16 words per colour or grey sample, 1 for byte
// formats and packed 16-bit RGB (which peers treat as two bytes).
inline uint32_t bytes_per_sample(uint32_t format) {
    switch (format & 0xFF) {
    case 0x02: case 0x09: case 0x0E: case 0x13: case 0x14: case 0x15:
    case 0x17: case 0x18: case 0x19: case 0x1A: case 0x1C: case 0x1D:
        return 2;
    default: return 1;
    }
}

// One image in memory the benchmark owns.
struct Plane {
    uint8_t *data;
    uint32_t format;
    int width, height, stride;
};

} // namespace orv_bench
