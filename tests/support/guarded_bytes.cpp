// GuardedBytes: an anonymous mapping whose last page is made inaccessible,
// with the bytes placed flush against it.
#include "guarded_bytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

namespace orv_test {

GuardedBytes::GuardedBytes(size_t capacity) : capacity_(capacity) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t pages = (capacity + page - 1) / page;
    mapped_ = (pages + 1) * page;
    mapping_ = mmap(nullptr, mapped_, PROT_READ | PROT_WRITE,
                    MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping_ == MAP_FAILED) throw std::runtime_error("mmap failed");
    uint8_t *guard = static_cast<uint8_t *>(mapping_) + pages * page;
    if (mprotect(guard, page, PROT_NONE) != 0)
        throw std::runtime_error("mprotect failed");
    end_ = guard;
}

GuardedBytes::~GuardedBytes() { munmap(mapping_, mapped_); }

uint8_t *GuardedBytes::place(const std::vector<uint8_t> &bytes) {
    if (bytes.size() > capacity_) throw std::logic_error("too many bytes");
    uint8_t *start = end_ - bytes.size();
    if (!bytes.empty()) std::memcpy(start, bytes.data(), bytes.size());
    return start;
}

std::vector<uint8_t> GuardedBytes::last(size_t count) const {
    return {end_ - count, end_};
}

} // namespace orv_test
