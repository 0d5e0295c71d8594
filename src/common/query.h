// Buffer queries and address arithmetic shared by every subsystem.
//
// Every routine asks the buffer library about its buffers through these
// helpers, one query per call, in the order the routine needs them. The
// return value of OFS_BufferParameterGet is not looked at: a query is
// judged only by the value it leaves in the slot.
#ifndef ORVANE_COMMON_QUERY_H
#define ORVANE_COMMON_QUERY_H

#include <orvane/buffer.h>

#include "isa.h"

#include <cstdint>
#include <cstring>

namespace orv {
inline namespace ORV_ISA {

// OFS_BUFFER_VALID read into a slot zeroed first, so a buffer library that
// writes nothing marks the handle as unusable.
inline bool buffer_is_valid(OFS_HANDLE buffer) {
    uintptr_t valid = 0;
    OFS_BufferParameterGet(buffer, OFS_BUFFER_VALID, &valid);
    return valid != 0;
}

inline uint32_t query_u32(OFS_HANDLE buffer, uint32_t parameter) {
    uint32_t value = 0;
    OFS_BufferParameterGet(buffer, parameter, &value);
    return value;
}

inline uint8_t *query_address(OFS_HANDLE buffer) {
    uintptr_t address = 0;
    OFS_BufferParameterGet(buffer, OFS_START_ADDR, &address);
    return reinterpret_cast<uint8_t *>(address);
}

// Moves an address by a byte count in the address width, wrapping as the
// machine's addresses do. Row steps are 32-bit unsigned differences that
// can be "negative"; on a 32-bit target they wrap back, on a 64-bit one
// they jump far forward, exactly as pointer stepping does on each.
inline uint8_t *advance(uint8_t *p, uintptr_t bytes) {
    return reinterpret_cast<uint8_t *>(reinterpret_cast<uintptr_t>(p) + bytes);
}
inline const uint8_t *advance(const uint8_t *p, uintptr_t bytes) {
    return reinterpret_cast<const uint8_t *>(reinterpret_cast<uintptr_t>(p) +
                                             bytes);
}

// Unaligned little-endian word access (both targets are little-endian).
inline uint16_t load_u16(const uint8_t *p) {
    uint16_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
inline uint32_t load_u32(const uint8_t *p) {
    uint32_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
inline void store_u16(uint8_t *p, uint32_t v) {
    uint16_t w = static_cast<uint16_t>(v);
    std::memcpy(p, &w, sizeof w);
}
inline void store_u32(uint8_t *p, uint32_t v) { std::memcpy(p, &v, sizeof v); }

} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_COMMON_QUERY_H
