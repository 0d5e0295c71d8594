// Bytes that end right before an inaccessible page: a kernel that reads or
// writes one byte past the extent it was given faults at once, with or
// without AddressSanitizer.
#ifndef ORVANE_TEST_GUARDED_BYTES_H
#define ORVANE_TEST_GUARDED_BYTES_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv_test {

class GuardedBytes {
public:
    // Room for `capacity` bytes, the last of them the last byte before a
    // PROT_NONE page.
    explicit GuardedBytes(size_t capacity);
    ~GuardedBytes();
    GuardedBytes(const GuardedBytes &) = delete;
    GuardedBytes &operator=(const GuardedBytes &) = delete;

    // Copies `bytes` so that they end at the guard; returns their start.
    uint8_t *place(const std::vector<uint8_t> &bytes);
    // The last `count` bytes before the guard.
    std::vector<uint8_t> last(size_t count) const;

private:
    void *mapping_;
    size_t mapped_;
    uint8_t *end_;
    size_t capacity_;
};

} // namespace orv_test

#endif // ORVANE_TEST_GUARDED_BYTES_H
