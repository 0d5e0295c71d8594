// What every fuzz target shares: a reader that turns the input into
// choices and pixel bytes, buffers of exactly the extent a call may touch,
// images made of them, and the checks that report a finding.
#ifndef ORVANE_FUZZ_SUPPORT_H
#define ORVANE_FUZZ_SUPPORT_H

#include "support/demosaic_extent.h"
#include "support/test_image.h"

#include <sanitizer/asan_interface.h> // its macros do nothing without ASan

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace orv_fuzz {

using namespace orv_test;
using Bytes = std::vector<uint8_t>;

// A finding: prints what was expected and aborts, so that libFuzzer (or
// the replay driver's caller) keeps the input.
inline void check(bool holds, const char *what) {
    if (holds) return;
    std::fprintf(stderr, "finding: %s\n", what);
    std::abort();
}

// Reads choices from the front of the input; once it is used up every
// choice is 0. The bytes left over become pixels.
struct FuzzInput {
    const uint8_t *data;
    size_t size;

    // A value below `bound` (at least 1), from one, two or four bytes.
    uint32_t below(uint32_t bound) {
        const unsigned width = bound <= 0x100u ? 1 : bound <= 0x10000u ? 2 : 4;
        uint32_t value = 0;
        for (unsigned i = 0; i < width && size > 0; ++i, ++data, --size)
            value = value << 8 | *data;
        return value % bound;
    }
    bool flag() { return below(2) != 0; }
    template <class T, size_t N> const T &pick(const T (&choices)[N]) {
        return choices[below(N)];
    }
    // `count` bytes: the rest of the input over and over, or a fixed
    // pseudo-random run when nothing is left.
    Bytes pixels(size_t count) const {
        if (size == 0) return random_bytes(count, 0x2545F491u);
        Bytes out(count);
        for (size_t i = 0; i < count; ++i) out[i] = data[i % size];
        return out;
    }
};

// Exactly `content.size()` bytes between two guard zones: AddressSanitizer
// reports any access to them; without it, a write there spoils a pattern.
struct ExactBytes {
    static constexpr size_t kGuard = 64;
    static constexpr uint8_t kGuardByte = 0xE7;
    Bytes storage;

    explicit ExactBytes(const Bytes &content) : storage(content.size() + 2 * kGuard, kGuardByte) {
        std::copy(content.begin(), content.end(), data());
        ASAN_POISON_MEMORY_REGION(storage.data(), kGuard);
        ASAN_POISON_MEMORY_REGION(data() + content.size(), kGuard);
    }
    uint8_t *data() { return storage.data() + kGuard; }
    Bytes bytes() const { return Bytes(storage.begin() + kGuard, storage.end() - kGuard); }
    // Both guards as they were made; their last use, as it unpoisons them.
    bool intact() const {
        ASAN_UNPOISON_MEMORY_REGION(storage.data(), storage.size());
        const auto guard = [](uint8_t b) { return b == kGuardByte; };
        return std::all_of(storage.begin(), storage.begin() + kGuard, guard) &&
               std::all_of(storage.end() - kGuard, storage.end(), guard);
    }
};

struct Buffer {
    uint32_t format, width, height, stride;
    size_t extent; // the bytes the call may touch
};

// An image of exactly `extent` pixel bytes from the input, with its
// buffer-library descriptor.
struct Image {
    Image(FuzzInput &in, const Buffer &b)
        : pixels(in.pixels(b.extent)), memory(pixels),
          handle(OFS_BufferCreateImage(memory.data(), b.width, b.height, b.stride, b.format)) {
        check(handle != 0, "the buffer library made a descriptor");
    }
    ~Image() { OFS_BufferDestroy(handle); }
    Image(const Image &) = delete;
    bool unchanged() const { return memory.bytes() == pixels; }

    const Bytes pixels; // as the image was made
    ExactBytes memory;
    const OFS_HANDLE handle;
};

// Makes the source and the destination, makes one of them invalid
// (`invalid` 1: the source, 2: the destination), and checks that `call`
// returns `expected`, leaves the source as it was, the destination too
// when it refuses, and nothing outside either.
template <class Call>
void check_call(FuzzInput &in, const Buffer &s, const Buffer &d, uint32_t invalid,
                ORV_STATUS expected, Call call) {
    Image src(in, s);
    Image dst(in, d);
    const uintptr_t not_valid = 0;
    if (invalid == 1 || invalid == 2)
        OFS_BufferParameterSet((invalid == 1 ? src : dst).handle, OFS_BUFFER_VALID, &not_valid);
    const ORV_STATUS status = call(src.handle, dst.handle);
    check(status == expected, "the status the target expects");
    check(src.unchanged(), "source left unwritten");
    if (status != ORV_OK) check(dst.unchanged(), "refusal leaves destination");
    check(src.memory.intact() && dst.memory.intact(), "nothing written outside either buffer");
}

} // namespace orv_fuzz

#endif // ORVANE_FUZZ_SUPPORT_H
