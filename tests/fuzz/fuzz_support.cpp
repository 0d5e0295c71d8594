// The input reader, the exactly sized buffers and the finding report.
#include "fuzz_support.h"

#include <sanitizer/asan_interface.h> // its macros do nothing without ASan

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace orv_fuzz {

constexpr uint8_t kGuardByte = 0xE7;

void finding(const char *what) {
    std::fprintf(stderr, "finding: %s\n", what);
    std::abort();
}

Bytes read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

uint32_t FuzzInput::below(uint32_t bound) {
    const unsigned width = bound <= 0x100u ? 1 : bound <= 0x10000u ? 2 : 4;
    uint32_t value = 0;
    for (unsigned i = 0; i < width && size_ > 0; ++i, ++data_, --size_)
        value = value << 8 | *data_;
    return value % bound;
}

Bytes FuzzInput::pixels(size_t count) {
    if (size_ == 0) return random_bytes(count, 0x2545F491u);
    Bytes out(count);
    for (size_t i = 0; i < count; ++i) out[i] = data_[i % size_];
    return out;
}

ExactBytes::ExactBytes(const Bytes &content)
    : storage_(content.size() + 2 * kGuard, kGuardByte) {
    std::copy(content.begin(), content.end(), data());
    poison();
}

ExactBytes::~ExactBytes() { ASAN_UNPOISON_MEMORY_REGION(storage_.data(), storage_.size()); }

void ExactBytes::poison() const {
    ASAN_POISON_MEMORY_REGION(storage_.data(), kGuard);
    ASAN_POISON_MEMORY_REGION(storage_.data() + storage_.size() - kGuard, kGuard);
}

bool ExactBytes::intact() const {
    ASAN_UNPOISON_MEMORY_REGION(storage_.data(), storage_.size());
    const auto guard = [](uint8_t b) { return b == kGuardByte; };
    const bool intact = std::all_of(storage_.begin(), storage_.begin() + kGuard, guard) &&
                        std::all_of(storage_.end() - kGuard, storage_.end(), guard);
    poison();
    return intact;
}

Image::Image(FuzzInput &in, const Buffer &b)
    : pixels(in.pixels(b.extent)), memory(pixels),
      handle(OFS_BufferCreateImage(memory.data(), b.width, b.height, b.stride, b.format)) {
    check(handle != 0, "the buffer library made a descriptor");
}

Image::~Image() { OFS_BufferDestroy(handle); }

void Image::set(uint32_t parameter, uint32_t value) {
    OFS_BufferParameterSet(handle, parameter, &value);
}

void Image::invalidate() {
    const uintptr_t invalid = 0;
    OFS_BufferParameterSet(handle, OFS_BUFFER_VALID, &invalid);
}

} // namespace orv_fuzz
