// Every SIMD conversion row (grey class, Y12P row, colour pair, YUV 4:2:2
// layout) against the plain row at every level up to the one in use, byte
// for byte, widths 0 to 67 and a few long ones. Both buffers end flush
// against an inaccessible page at what the plain row touches, and the
// destination starts as a pattern, so an X byte must stay as it was.
#include "support/guarded_bytes.h"
#include "support/kernel_levels.h"
#include "support/kernel_rows.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

namespace {

using orv::RowFunction;
using Bytes = std::vector<uint8_t>;

// Random bytes, or bytes from the values where shifts, flags, clamps and floors change.
Bytes source(size_t count, bool extremes, uint32_t seed) {
    static const uint8_t edge[] = {0, 1, 0x0F, 0x10, 0x7F, 0x80, 0x81, 0xF0, 0xFE, 0xFF};
    Bytes bytes = orv_test::random_bytes(count, seed);
    for (auto &b : bytes) b = extremes ? edge[b % 10] : b;
    return bytes;
}

// The longest row: 4099 pixels of 6 bytes.
constexpr size_t kRoom = 4100 * 6;

Bytes run(RowFunction row, const Bytes &src, size_t dst_size, uint32_t width) {
    static orv_test::GuardedBytes in(kRoom), out(kRoom);
    row(in.place(src), out.place(Bytes(dst_size, 0xA5)), width);
    return out.last(dst_size);
}

const orv::ConvertKernels *const by_level[orv::kSimdLevels] = ORV_TABLES_BY_LEVEL(convert_kernels);

TEST(ConversionRowTwins, WriteExactlyThePlainRowsBytes) {
    const auto twins = orv_test::twin_tables(by_level);
    if (twins.empty()) GTEST_SKIP() << "no SIMD level in use";
    std::vector<uint32_t> widths = {255u, 1000u, 1921u, 4099u};
    for (uint32_t w = 0; w <= 67; ++w) widths.push_back(w);
    uint32_t seed = 1;
    for (const orv_test::ConversionRow &r : orv_test::conversion_rows()) {
        const RowFunction plain = r.pick(*by_level[0], r.a, r.b);
        if (plain == nullptr) continue; // a pair that is not converted
        for (uint32_t width : widths)
            for (bool extremes : {false, true}) {
                const orv_test::Extent e = r.extent(width, r.src_bytes, r.dst_bytes);
                const Bytes src = source(e.src, extremes, ++seed);
                const Bytes expected = run(plain, src, e.dst, width);
                for (const auto &twin : twins) {
                    const RowFunction row = r.pick(*twin.table, r.a, r.b);
                    ASSERT_NE(row, nullptr) << r.name << " at " << twin.level;
                    ASSERT_EQ(run(row, src, e.dst, width), expected)
                        << r.name << " at " << twin.level << ", width " << width
                        << (extremes ? ", extreme values" : "");
                }
            }
    }
}

} // namespace
