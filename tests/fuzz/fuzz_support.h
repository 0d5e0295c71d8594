// What every fuzz target shares: a reader that turns the input into
// choices and pixel bytes, buffers of exactly the extent a call may touch,
// images made of them, and the checks that report a finding.
#ifndef ORVANE_FUZZ_SUPPORT_H
#define ORVANE_FUZZ_SUPPORT_H

#include "support/demosaic_extent.h"
#include "support/test_image.h"

#include <orvaneimage.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace orv_fuzz {

using namespace orv_test;
using Bytes = std::vector<uint8_t>;

// A finding: prints what was expected and aborts, so that libFuzzer (or
// the replay driver's caller) keeps the input.
[[noreturn]] void finding(const char *what);
inline void check(bool holds, const char *what) {
    if (!holds) finding(what);
}

Bytes read_file(const std::string &path);

// Reads choices from the front of the input; once it is used up every
// choice is 0. The bytes left over become pixels.
class FuzzInput {
public:
    FuzzInput(const uint8_t *data, size_t size) : data_(data), size_(size) {}

    // A value below `bound` (at least 1), from one, two or four bytes.
    uint32_t below(uint32_t bound);
    bool flag() { return below(2) != 0; }
    template <class T, size_t N> const T &pick(const T (&choices)[N]) {
        return choices[below(N)];
    }
    // `count` bytes: the rest of the input over and over, or a fixed
    // pseudo-random run when nothing is left.
    Bytes pixels(size_t count);

private:
    const uint8_t *data_;
    size_t size_;
};

// Exactly `content.size()` bytes between two guard zones, which
// AddressSanitizer reports any access to; without it they hold a pattern
// that a write outside spoils (see intact()).
class ExactBytes {
public:
    explicit ExactBytes(const Bytes &content);
    ~ExactBytes();
    uint8_t *data() { return storage_.data() + kGuard; }
    Bytes bytes() const { return Bytes(storage_.begin() + kGuard, storage_.end() - kGuard); }
    bool intact() const;

private:
    static constexpr size_t kGuard = 64;
    void poison() const;
    Bytes storage_;
};

struct Buffer {
    uint32_t format, width, height, stride;
    size_t extent; // the bytes the call may touch
};

// An image of exactly `extent` pixel bytes from the input, with its
// buffer-library descriptor.
struct Image {
    Image(FuzzInput &in, const Buffer &b);
    ~Image();
    Image(const Image &) = delete;
    Image &operator=(const Image &) = delete;
    void set(uint32_t parameter, uint32_t value);
    void invalidate();
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
void check_call(FuzzInput &in, const Buffer &s, const Buffer &d,
                uint32_t invalid, ORV_STATUS expected, const char *rule,
                Call call) {
    Image src(in, s);
    Image dst(in, d);
    if (invalid == 1) src.invalidate();
    if (invalid == 2) dst.invalidate();
    const ORV_STATUS status = call(src, dst);
    check(status == expected, rule);
    check(src.unchanged(), "source left unwritten");
    if (status != ORV_OK) check(dst.unchanged(), "refusal leaves destination");
    check(src.memory.intact() && dst.memory.intact(), "nothing written outside either buffer");
}

} // namespace orv_fuzz

#endif // ORVANE_FUZZ_SUPPORT_H
