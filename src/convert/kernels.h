// The table of conversion rows that OVC_Convert runs: one row function per
// grey source and destination class, per colour pair, per YUV 4:2:2
// layout, and BGRX32 into BGR24.
//
// The plain table is the reference. Each SIMD file builds the same table
// from the same row templates compiled for its instruction set, with
// hand-written bulk kernels where they pay; every entry writes exactly the
// bytes of the plain entry and reads nothing more. The table for the level
// in use is chosen once, on first use.
#ifndef ORVANE_CONVERT_KERNELS_H
#define ORVANE_CONVERT_KERNELS_H

#include "../common/isa.h"

#include <cstdint>

namespace orv {

// One source line into one destination line, `width` source pixels.
using RowFunction = void (*)(const uint8_t *src, uint8_t *dst,
                             uint32_t width);

enum GreySource : unsigned { kFromY8, kFromY16, kFromY10, kFromY12, kFromY14,
                             kGreySources };

// Destination classes of a grey source: each RGB/BGR pair of destinations
// gets the same bytes, so it shares one row.
enum GreyClass : unsigned {
    kToGrey8,    // 01
    kToGrey16,   // 02, 13, 14, 15
    kToGrey32,   // 03
    kTo555,      // 05, 0A
    kTo565,      // 06, 0B
    kToBytes32,  // 07, 08, 0C, 0D
    kToWords48,  // 09, 0E, 1C, 1D
    kToPacked30, // 0F, 10
    kToBytes24,  // 11, 12
    kGreyClasses
};

enum ColourSource : unsigned { kFromBgr24, kFromBgr48, kFromBgr36, kFromRgb30,
                               kColourSources };
// Colour destinations are indexed by their low byte less 0x05.
constexpr unsigned kFirstColourDestination = 0x05;
constexpr unsigned kColourDestinations = 14;

// The six 8-bit-per-channel layouts that YUV 4:2:2 converts into.
enum YuvLayout : unsigned { kYuvToXbgr32, kYuvToBgrx32, kYuvToXrgb32,
                            kYuvToRgbx32, kYuvToBgr24, kYuvToRgb24,
                            kYuvLayouts };

// Null entries are pairs that OVC_Convert does not convert.
struct ConvertKernels {
    RowFunction grey[kGreySources][kGreyClasses];
    RowFunction y12p[kGreyClasses];
    RowFunction colour[kColourSources][kColourDestinations];
    RowFunction bgrx32_to_bgr24;
    RowFunction yuv422[kYuvLayouts];
};

namespace plain { extern const ConvertKernels convert_kernels; }
namespace sse2 { extern const ConvertKernels convert_kernels; }
namespace avx2 { extern const ConvertKernels convert_kernels; }
namespace avx512 { extern const ConvertKernels convert_kernels; }

// The table for the level in use.
const ConvertKernels &convert_kernels_in_use();

} // namespace orv

#endif // ORVANE_CONVERT_KERNELS_H
