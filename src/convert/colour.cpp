// Conversions from the colour sources BGR24, BGR48, BGR36 and RGB30 into
// the fourteen colour destinations, and from BGRX32 into BGR24: each pair's
// capacity factors and row walk around the rows of colour_rows.h, taken
// from the kernel table.
#include "colour_rows.h"
#include "conversion_job.h"

namespace orv {
namespace {

using namespace colour;

template <class Src, class Dst>
ORV_STATUS colour_pair(const ConversionJob &job, Capacity cap, uint32_t dst) {
    return run_pair<Src, Dst>(
        job, cap,
        convert_kernels_in_use().colour[Src::index][dst - kFirstColourDestination]);
}

// Capacity factors (k, m) of a source, by destination class. Each ratio is
// the destination's bytes per pixel; the products are formed as listed.
struct CapacityTable {
    Capacity packed16; // 05, 06, 0A, 0B
    Capacity quad;     // 07, 08, 0C, 0D and the 30-bit 0F, 10
    Capacity words48;  // 09, 0E
    Capacity triple;   // 11, 12
};

constexpr CapacityTable kBgr24Capacity{{6, 3}, {12, 3}, {6, 1}, {3, 1}};
constexpr CapacityTable kWordsCapacity{{6, 3}, {12, 3}, {6, 1}, {6, 2}};
constexpr CapacityTable kRgb30Capacity{{4, 2}, {4, 1}, {12, 2}, {12, 4}};

// The fourteen destinations of one source.
template <class Src>
ORV_STATUS to_fourteen(const ConversionJob &job, uint32_t dst,
                       const CapacityTable &cap) {
    switch (dst) {
    case 0x05: return colour_pair<Src, ToRgb15>(job, cap.packed16, dst);
    case 0x06: return colour_pair<Src, ToRgb16>(job, cap.packed16, dst);
    case 0x07: return colour_pair<Src, ToXbgr32>(job, cap.quad, dst);
    case 0x08: return colour_pair<Src, ToBgrx32>(job, cap.quad, dst);
    case 0x09: return colour_pair<Src, ToBgr48>(job, cap.words48, dst);
    case 0x0A: return colour_pair<Src, ToBgr15>(job, cap.packed16, dst);
    case 0x0B: return colour_pair<Src, ToBgr16>(job, cap.packed16, dst);
    case 0x0C: return colour_pair<Src, ToXrgb32>(job, cap.quad, dst);
    case 0x0D: return colour_pair<Src, ToRgbx32>(job, cap.quad, dst);
    case 0x0E: return colour_pair<Src, ToRgb48>(job, cap.words48, dst);
    case 0x0F: return colour_pair<Src, ToRgb30>(job, cap.quad, dst);
    case 0x10: return colour_pair<Src, ToBgr30>(job, cap.quad, dst);
    case 0x11: return colour_pair<Src, ToBgr24>(job, cap.triple, dst);
    case 0x12: return colour_pair<Src, ToRgb24>(job, cap.triple, dst);
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

// The one conversion from a 32-bit colour source, walked in bytes.
ORV_STATUS from_bgrx32(const ConversionJob &job, uint32_t dst) {
    if (dst != 0x11) return ORV_ERROR_NOT_SUPPORTED;
    return run_rows(job, {12, 4}, plain_walk(job, 4, 0, 3, 0),
                    convert_kernels_in_use().bgrx32_to_bgr24);
}

} // namespace

ORV_STATUS convert_from_colour(const ConversionJob &job, uint32_t key) {
    const uint32_t dst = key & 0xFFu;
    switch (key >> 8) {
    case 0x11: return to_fourteen<FromBgr24>(job, dst, kBgr24Capacity);
    case 0x09: return to_fourteen<FromBgr48>(job, dst, kWordsCapacity);
    case 0x1C: return to_fourteen<FromBgr36>(job, dst, kWordsCapacity);
    case 0x0F: return to_fourteen<FromRgb30>(job, dst, kRgb30Capacity);
    case 0x08: return from_bgrx32(job, dst);
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

} // namespace orv
