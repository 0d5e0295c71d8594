// The input reader, the exactly sized buffers and the finding report.
#include "fuzz_support.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#if defined(__SANITIZE_ADDRESS__)
#define ORV_FUZZ_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORV_FUZZ_ASAN 1
#endif
#endif

#if ORV_FUZZ_ASAN
#include <sanitizer/asan_interface.h>
#define ORV_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define ORV_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define ORV_POISON(p, n) ((void)(p), (void)(n))
#define ORV_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

namespace orv_fuzz {

constexpr uint8_t kGuardByte = 0xE7;

void finding(const char *what) {
    std::fprintf(stderr, "finding: %s\n", what);
    std::abort();
}

uint32_t FuzzInput::below(uint32_t bound) {
    const unsigned width = bound <= 0x100u ? 1 : bound <= 0x10000u ? 2 : 4;
    uint32_t value = 0;
    for (unsigned i = 0; i < width && size_ > 0; ++i, ++data_, --size_)
        value = value << 8 | *data_;
    return value % bound;
}

Bytes FuzzInput::pixels(size_t count) {
    Bytes out(count);
    uint32_t x = 0x2545F491u;
    for (size_t i = 0; i < count; ++i) {
        if (size_ > 0) {
            out[i] = data_[i % size_];
        } else {
            x ^= x << 13, x ^= x >> 17, x ^= x << 5;
            out[i] = static_cast<uint8_t>(x >> 24);
        }
    }
    return out;
}

ExactBytes::ExactBytes(const Bytes &content)
    : size_(content.size()), storage_(new uint8_t[size_ + 2 * kGuard]) {
    std::memset(storage_.get(), kGuardByte, size_ + 2 * kGuard);
    if (size_ > 0) std::memcpy(data(), content.data(), size_);
    ORV_POISON(storage_.get(), kGuard);
    ORV_POISON(data() + size_, kGuard);
}

ExactBytes::~ExactBytes() { ORV_UNPOISON(storage_.get(), size_ + 2 * kGuard); }

Bytes ExactBytes::bytes() const {
    const uint8_t *start = storage_.get() + kGuard;
    return Bytes(start, start + size_);
}

bool ExactBytes::intact() const {
    ORV_UNPOISON(storage_.get(), size_ + 2 * kGuard);
    bool intact = true;
    for (size_t i = 0; i < kGuard; ++i)
        intact = intact && storage_[i] == kGuardByte &&
                 storage_[kGuard + size_ + i] == kGuardByte;
    ORV_POISON(storage_.get(), kGuard);
    ORV_POISON(storage_.get() + kGuard + size_, kGuard);
    return intact;
}

Image::Image(const Bytes &content, uint32_t format, uint32_t width,
             uint32_t height, uint32_t stride)
    : memory_(content),
      handle_(OFS_BufferCreateImage(memory_.data(), width, height, stride,
                                    format)) {
    check(handle_ != 0, "the buffer library made a descriptor");
}

Image::~Image() { OFS_BufferDestroy(handle_); }

void Image::set(uint32_t parameter, uint32_t value) {
    OFS_BufferParameterSet(handle_, parameter, &value);
}

void Image::invalidate() {
    const uintptr_t invalid = 0;
    OFS_BufferParameterSet(handle_, OFS_BUFFER_VALID, &invalid);
}

} // namespace orv_fuzz
