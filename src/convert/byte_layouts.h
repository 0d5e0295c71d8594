// Where the 8-bit-per-channel destinations keep their channels: the byte
// offsets of R, G and B within a pixel. The X byte of a 32-bit layout is
// never written: callers keep their alpha there.
#ifndef ORVANE_CONVERT_BYTE_LAYOUTS_H
#define ORVANE_CONVERT_BYTE_LAYOUTS_H

#include "../common/isa.h"

#include <cstdint>

namespace orv {
inline namespace ORV_ISA {

template <unsigned R, unsigned G, unsigned B, uint32_t Bytes>
struct ByteLayout {
    static constexpr uint32_t bytes = Bytes;
    static void put(uint8_t *d, uint32_t r, uint32_t g, uint32_t b) {
        d[R] = static_cast<uint8_t>(r);
        d[G] = static_cast<uint8_t>(g);
        d[B] = static_cast<uint8_t>(b);
    }
};

using LayoutXbgr32 = ByteLayout<3, 2, 1, 4>; // X, B, G, R
using LayoutBgrx32 = ByteLayout<2, 1, 0, 4>; // B, G, R, X
using LayoutXrgb32 = ByteLayout<1, 2, 3, 4>; // X, R, G, B
using LayoutRgbx32 = ByteLayout<0, 1, 2, 4>; // R, G, B, X
using LayoutBgr24 = ByteLayout<2, 1, 0, 3>;
using LayoutRgb24 = ByteLayout<0, 1, 2, 3>;

} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_CONVERT_BYTE_LAYOUTS_H
