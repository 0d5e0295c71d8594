// OVC_Convert over every format pair, accepted or refused, with buffers of
// exactly the header's extent for the pair; the status is the one of the
// pair tables and the capacity test.
#include "bayer/member_table.h"
#include "fuzz_support.h"
#include "support/kernel_rows.h"

#include <algorithm>
#include <cstring>

using namespace orv_fuzz;

struct Format {
    uint8_t code;        // low byte
    const char *accepts; // destination low bytes, as a string
};

// Destination lists that several sources share.
const char kGreyClasses[] =
    "\x01\x02\x03\x05\x06\x07\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f\x10\x11\x12";
const char kColours[] =
    "\x05\x06\x07\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f\x10\x11\x12";
const char kFromBayerN[] = "\x06\x08\x0d\x11";

// Every source that OVC_Convert accepts, with its destinations.
const Format kSources[] = {
    {0x01, "\x01\x02\x03\x05\x06\x07\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f"
           "\x10\x11\x12\x13\x14\x15\x1c\x1d"},
    {0x02, kGreyClasses}, {0x13, kGreyClasses}, {0x14, kGreyClasses}, {0x15, kGreyClasses},
    {0x1B, "\x06\x07\x08\x0b\x0c\x0d\x11\x12"}, {0x08, "\x11"},
    {0x09, kColours}, {0x0F, kColours}, {0x11, kColours}, {0x1C, kColours},
    {0x1E, "\x07\x08\x0c\x0d\x11\x12"}, {0x16, "\x06\x08\x0b\x0d\x11"},
    {0x17, kFromBayerN}, {0x18, kFromBayerN}, {0x19, kFromBayerN}, {0x1A, kFromBayerN},
    {0x04, ""}, // never a source
    {0x03, ""}, // destination only
};

// Bytes a pixel and stride word of each low byte (0 bytes: not a layout,
// or Y12P and YUV 4:2:2 sources, which go by pairs).
struct Layout {
    uint8_t bytes, word;
};
static Layout layout_of(uint32_t code) {
    static const Layout layouts[0x20] = {
        {0, 1}, {1, 1}, {2, 2}, {4, 4}, {0, 1}, {2, 2}, {2, 2}, {4, 1},
        {4, 1}, {6, 2}, {2, 2}, {2, 2}, {4, 1}, {4, 1}, {6, 2}, {4, 4},
        {4, 4}, {3, 1}, {3, 1}, {2, 2}, {2, 2}, {2, 2}, {1, 1}, {2, 2},
        {2, 2}, {2, 2}, {2, 2}, {0, 1}, {6, 2}, {6, 2}, {2, 1}, {0, 1}};
    return layouts[code & 0x1Fu];
}

static bool is_bayer(uint32_t code) { return code >= 0x16 && code <= 0x1A; }

struct Geometry {
    uint32_t width, height, src_stride, dst_stride, dst_width, dst_height;
};

// A stride of one line plus padding in whole words, or, for an image of
// at most one line, any stride (the row step is then never taken).
static uint32_t stride_for(FuzzInput &in, uint32_t line, uint32_t word, uint32_t height, bool any) {
    if (any && height <= 1 && in.below(8) == 0) return in.below(0x10000);
    return line + word * in.below(4);
}

constexpr size_t kUnbounded = SIZE_MAX;

// What the accepted conversion touches, as the header states it, or
// kUnbounded where a row step wraps. A grey copy moves whole strides.
static Extent accepted_extent(uint32_t src, uint32_t dst, uint32_t bytes_in, uint32_t bytes_out,
                              const Geometry &g, bool copy, uint32_t method, uint32_t phase) {
    const uint32_t w = g.width, h = g.height;
    const size_t pairs = w / 2 + (w & 1u);
    if (copy) return {size_t(h) * g.src_stride, size_t(h) * g.src_stride};
    // Beyond one line, a stride below its line wraps the row step.
    const bool lines = h > 1 || is_bayer(src);
    const uint32_t src_line = src == 0x1B ? 3 * w >> 1 : w * bytes_in;
    if (lines && ((src != 0x1E && g.src_stride < src_line) ||
                  (dst != 0x01 && g.dst_stride < w * bytes_out)))
        return {kUnbounded, kUnbounded};
    if (src == 0x01 && dst == 0x01) {
        if (lines && g.dst_stride < g.dst_width) return {kUnbounded, kUnbounded};
        return {lines_extent(h, g.src_stride, w),
                lines_extent(h, w + (g.dst_stride - g.dst_width), w)};
    }
    // Y12P and YUV 4:2:2 write a whole last pair, the stride's padding after it.
    const size_t pair_line = pairs * 2 * bytes_out;
    const size_t pair_dst =
        lines_extent(h, pair_line + (g.dst_stride - w * bytes_out), pair_line);
    if (src == 0x1B)
        return {lines_extent(h, pairs * 3 + (g.src_stride - (3 * w >> 1)), pairs * 3),
                pair_dst};
    if (src == 0x1E) return {h * pairs * 4, pair_dst};
    if (is_bayer(src)) {
        if (w < 2) return {kUnbounded, kUnbounded}; // callers pass W >= 2
        const bool rgb16_c = dst == 0x06 && phase == ORV_BAYER_PHASE_C;
        const DemosaicExtent e = demosaic_extent(method_of(method), rgb16_c, w, h, bytes_in,
                                                 g.src_stride, bytes_out, g.dst_stride);
        return {e.source, e.destination};
    }
    const size_t next_word = src == 0x0F && dst == 0x0E ? 4 : 0;
    return {lines_extent(h, g.src_stride, size_t(w) * bytes_in + next_word),
            lines_extent(h, g.dst_stride, size_t(w) * bytes_out)};
}

const uint32_t kMethods[] = {ORV_BAYER_METHOD_DUP, ORV_BAYER_METHOD_AVE,
                             ORV_BAYER_METHOD_MED, 0x409, 0x108};
const uint32_t kPhases[] = {ORV_BAYER_PHASE_A, ORV_BAYER_PHASE_B,
                            ORV_BAYER_PHASE_C, ORV_BAYER_PHASE_D, 0x50A};
// Only the low byte of a format takes part; zero is refused.
const uint32_t kUpperBits[] = {0xC0022600u, 0xC0022600u, 0x00012600u, 0};

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in{data, size};
    const Format &source = in.pick(kSources);
    const uint32_t src_low = source.code;
    const uint32_t accepted = uint32_t(std::strlen(source.accepts));
    const uint32_t dst_low = in.below(8) == 0 || accepted == 0
                                 ? in.below(0x20)
                                 : uint8_t(source.accepts[in.below(accepted)]);
    const uint32_t src_format = in.pick(kUpperBits) | src_low;
    const uint32_t dst_format = in.pick(kUpperBits) | dst_low;
    const uint32_t method = in.pick(kMethods), phase = in.pick(kPhases);
    const Layout from = layout_of(src_low), out = layout_of(dst_low);
    const uint32_t out_bytes = out.bytes ? out.bytes : 1;

    Geometry g{};
    g.width = in.below(in.flag() ? 8 : 160);
    g.height = in.below(in.flag() ? 4 : 24);
    // YUV 4:2:2 sources are read packed: their stride is any small value.
    const uint32_t src_line = src_low == 0x1B   ? (g.width + 1) / 2 * 3
                              : src_low == 0x1E ? 0
                                                : g.width * from.bytes;
    g.src_stride = stride_for(in, src_line, from.word, g.height, !is_bayer(src_low));
    g.dst_stride = stride_for(in, g.width * out_bytes, out.word, g.height, !is_bayer(src_low));
    g.dst_width = g.width + in.below(5) - 2;
    g.dst_height = std::max<int>(0, int(g.height) + int(in.below(4)) - 2);
    if (in.below(4) == 0) g.dst_height = g.height, g.dst_stride = g.src_stride;

    const bool copy = (src_low == 0x01 || src_low == 0x02) && src_low == dst_low &&
                      g.src_stride == g.dst_stride && g.height == g.dst_height;
    const ORV_STATUS expected =
        src_format == 0 || dst_format == 0 ? ORV_ERROR_BAD_PARAM
        : dst_low == 0 || !std::strchr(source.accepts, int(dst_low)) ? ORV_ERROR_NOT_SUPPORTED
        : !copy && uint64_t(g.width) * g.height * out.bytes >
                       uint64_t(g.dst_stride) * g.dst_height
            ? ORV_ERROR_BAD_PARAM
        : is_bayer(src_low) && !orv::bayer::find_member(src_low != 0x16, dst_low, method, phase)
            ? ORV_ERROR_NOT_IMPLEMENTED
            : ORV_OK;

    Extent extent =
        accepted_extent(src_low, dst_low, from.bytes, out_bytes, g, copy, method, phase);
    // A refusal touches nothing: any memory will do. A wrapped row step or a
    // geometry callers must not pass is not tried.
    if (expected != ORV_OK)
        extent = {std::min<size_t>(extent.src, 4096), std::min<size_t>(extent.dst, 4096)};
    else if (extent.src > (1u << 22) || extent.dst > (1u << 22))
        return 0;
    check_call(in, {src_format, g.width, g.height, g.src_stride, extent.src},
               {dst_format, g.dst_width, g.dst_height, g.dst_stride, extent.dst}, 0, expected,
               [&](OFS_HANDLE src, OFS_HANDLE dst) {
                   OFS_BufferParameterSet(src, OFS_BAYER_METHOD, &method);
                   OFS_BufferParameterSet(src, OFS_BAYER_PHASE, &phase);
                   return OVC_Convert(src, dst);
               });
    return 0;
}
