// What every fuzz target shares: a reader that turns the input into
// choices and pixel bytes, buffers allocated at exactly the extent a call
// may touch, images made of them, and the check that reports a finding.
#ifndef ORVANE_FUZZ_SUPPORT_H
#define ORVANE_FUZZ_SUPPORT_H

#include "support/demosaic_extent.h"

#include <orvaneimage.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace orv_fuzz {

using Bytes = std::vector<uint8_t>;
using orv_test::DemosaicExtent;
using orv_test::DemosaicMethod;
using orv_test::demosaic_extent;
using orv_test::lines_extent;
using orv_test::method_of;

// A finding: prints what was expected and aborts, so that libFuzzer (or
// the replay driver's caller) keeps the input.
[[noreturn]] void finding(const char *what);
inline void check(bool holds, const char *what) {
    if (!holds) finding(what);
}

// Reads choices from the front of the input; once it is used up every
// choice is 0. The bytes left over become pixels.
class FuzzInput {
public:
    FuzzInput(const uint8_t *data, size_t size) : data_(data), size_(size) {}

    // A value below `bound` (at least 1), from one, two or four bytes.
    uint32_t below(uint32_t bound);
    // A value in [low, high].
    uint32_t in(uint32_t low, uint32_t high) { return low + below(high - low + 1); }
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

// Memory of exactly `size` bytes between two guard zones. Under
// AddressSanitizer the guards are poisoned, so any access outside is
// reported at once; without it they hold a pattern that a write outside
// spoils (see intact()).
class ExactBytes {
public:
    explicit ExactBytes(const Bytes &content);
    ~ExactBytes();
    ExactBytes(const ExactBytes &) = delete;
    ExactBytes &operator=(const ExactBytes &) = delete;

    uint8_t *data() { return storage_.get() + kGuard; }
    Bytes bytes() const;
    // Both guards as they were made.
    bool intact() const;

private:
    static constexpr size_t kGuard = 64;
    size_t size_;
    std::unique_ptr<uint8_t[]> storage_;
};

// A buffer-library descriptor of an ExactBytes image.
class Image {
public:
    Image(const Bytes &content, uint32_t format, uint32_t width,
          uint32_t height, uint32_t stride);
    ~Image();
    Image(const Image &) = delete;
    Image &operator=(const Image &) = delete;

    OFS_HANDLE handle() const { return handle_; }
    ExactBytes &memory() { return memory_; }
    void set(uint32_t parameter, uint32_t value);
    void invalidate();

private:
    ExactBytes memory_;
    OFS_HANDLE handle_;
};

// What every call must leave: the expected status, the source as it was,
// the destination as it was after a refusal, nothing outside either.
inline void check_call(ORV_STATUS status, ORV_STATUS expected,
                       const char *status_rule, Image &src,
                       const Bytes &src_bytes, Image &dst,
                       const Bytes &dst_bytes) {
    check(status == expected, status_rule);
    check(src.memory().bytes() == src_bytes, "source left unwritten");
    if (status != ORV_OK)
        check(dst.memory().bytes() == dst_bytes, "refusal leaves destination");
    check(src.memory().intact() && dst.memory().intact(),
          "nothing written outside either buffer");
}

} // namespace orv_fuzz

#endif // ORVANE_FUZZ_SUPPORT_H
