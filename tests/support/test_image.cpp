// Test images backed by the real buffer library.
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace orv_test {

TestImage::TestImage(uint32_t format, uint32_t width, uint32_t height,
                     uint32_t stride, size_t bytes, uint8_t fill)
    : bytes_(bytes == SIZE_MAX ? size_t(stride) * height : bytes, fill),
      handle_(OFS_BufferCreateImage(bytes_.data(), width, height, stride,
                                    format)) {
    EXPECT_NE(handle_, 0u);
}

TestImage::~TestImage() { OFS_BufferDestroy(handle_); }

void TestImage::set(uint32_t parameter, uint32_t value) {
    EXPECT_EQ(OFS_BufferParameterSet(handle_, parameter, &value), ORV_OK);
}

void TestImage::set_pointer(uint32_t parameter, uintptr_t value) {
    EXPECT_EQ(OFS_BufferParameterSet(handle_, parameter, &value), ORV_OK);
}

void TestImage::set_bayer(uint32_t method, uint32_t phase) {
    set(OFS_BAYER_METHOD, method);
    set(OFS_BAYER_PHASE, phase);
}

std::vector<uint8_t> TestImage::randomise(uint32_t seed) {
    const std::vector<uint8_t> bytes = random_bytes(size(), seed);
    std::copy(bytes.begin(), bytes.end(), bytes_.begin()); // the handle keeps this memory
    return bytes;
}

uint16_t TestImage::u16(size_t offset) const {
    uint16_t v;
    std::memcpy(&v, bytes_.data() + offset, sizeof v);
    return v;
}

uint32_t TestImage::u32(size_t offset) const {
    uint32_t v;
    std::memcpy(&v, bytes_.data() + offset, sizeof v);
    return v;
}

std::vector<uint8_t> random_bytes(size_t count, uint32_t seed) {
    std::vector<uint8_t> out(count);
    uint32_t x = seed ? seed : 0x9E3779B9u;
    for (auto &b : out) {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        b = static_cast<uint8_t>(x >> 24);
    }
    return out;
}

std::vector<uint8_t> read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

uint32_t crc32(const std::vector<uint8_t> &bytes) {
    uint32_t crc = 0xFFFFFFFFu;
    for (uint8_t b : bytes) {
        crc ^= b;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

} // namespace orv_test
