// Test images: pixel memory of an exact size (so AddressSanitizer sees any
// access past it) described by a real buffer-library handle.
#ifndef ORVANE_TEST_IMAGE_H
#define ORVANE_TEST_IMAGE_H

#include <orvaneimage.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace orv_test {

class TestImage {
public:
    // `bytes` defaults to stride x height; every byte starts as `fill`.
    TestImage(uint32_t format, uint32_t width, uint32_t height,
              uint32_t stride, size_t bytes = SIZE_MAX, uint8_t fill = 0xCD);
    ~TestImage();
    TestImage(const TestImage &) = delete;
    TestImage &operator=(const TestImage &) = delete;

    OFS_HANDLE handle() const { return handle_; }
    uint8_t *data() { return bytes_.data(); }
    const uint8_t *data() const { return bytes_.data(); }
    size_t size() const { return bytes_.size(); }
    const std::vector<uint8_t> &bytes() const { return bytes_; }
    uint8_t &operator[](size_t i) { return bytes_[i]; }

    void set(uint32_t parameter, uint32_t value);
    void set_pointer(uint32_t parameter, uintptr_t value); // ids 3 and 11
    void set_bayer(uint32_t method, uint32_t phase);
    void fill(uint8_t value) { std::memset(bytes_.data(), value, size()); }
    // Every byte from random_bytes(size(), seed); returns them.
    std::vector<uint8_t> randomise(uint32_t seed);

    uint16_t u16(size_t offset) const;
    uint32_t u32(size_t offset) const;

private:
    std::vector<uint8_t> bytes_;
    OFS_HANDLE handle_;
};

// Deterministic pseudo-random bytes for images (xorshift32).
std::vector<uint8_t> random_bytes(size_t count, uint32_t seed);

// Every byte of a file; none when it cannot be read.
std::vector<uint8_t> read_file(const std::string &path);

// CRC-32 (the zlib polynomial) of some bytes: recorded checksums of whole
// outputs hold results that no second implementation needs to restate.
uint32_t crc32(const std::vector<uint8_t> &bytes);

} // namespace orv_test

#endif // ORVANE_TEST_IMAGE_H
