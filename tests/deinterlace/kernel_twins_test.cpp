// Every vector twin of a line pair (a field line's copy and the filled
// line after it) against the plain pair at every level up to the one in
// use, over strides 0 to 70 and a few long ones, the field and the output
// ending at an inaccessible page where the plain pair stops; and the
// median lines of every level against median_of_six.
#include "deinterlace/byte_lines.h"
#include "deinterlace/kernels.h"
#include "support/field_lines.h"
#include "support/guarded_bytes.h"
#include "support/kernel_levels.h"
#include "support/kernel_rows.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using orv::deinterlace::DeinterlaceKernels;
using Bytes = std::vector<uint8_t>;

const DeinterlaceKernels *const by_level[orv::kSimdLevels] =
    ORV_TABLES_BY_LEVEL(deinterlace_kernels);

// The `written` bytes from the copy's start (over a pattern) and how far
// `pair` moves on; the field is at most 4097 bytes and the 4098 read below.
std::pair<Bytes, uintptr_t> fill(orv::deinterlace::LinePair pair, const Bytes &field,
                                 uint32_t stride, size_t written) {
    static orv_test::GuardedBytes in(4097 + 4098), out(4097 + 4098);
    const uintptr_t moved = pair(in.place(field), stride, out.place(Bytes(written, 0xA5)));
    return {out.last(written), moved};
}

TEST(FilledLineTwins, WriteExactlyThePlainLinesBytes) {
    const auto twins = orv_test::twin_tables(by_level);
    if (twins.empty()) GTEST_SKIP() << "no SIMD level in use";
    std::vector<uint32_t> strides;
    for (uint32_t s = 0; s <= 70; ++s) strides.push_back(s);
    strides.insert(strides.end(), {72u, 131u, 255u, 1001u, 4097u});
    uint32_t seed = 7;
    for (const orv_test::FieldLine &line : orv_test::field_line_entries())
        for (uint32_t stride : strides) {
            const orv_test::Filled filled =
                orv_test::filled_line(line.shape, line.median, stride);
            if (stride < filled.least_stride) continue;
            const size_t written = stride + filled.length;
            // Random lines, all-255 lines (the largest kernel sums) and runs of
            // three 0s and three 255s (the largest differences between neighbours).
            for (int content = 0; content < 3; ++content) {
                Bytes field = orv_test::random_bytes(line.reads_line_below ? written : stride,
                                                     ++seed);
                for (size_t i = 0; content > 0 && i < field.size(); ++i)
                    field[i] = content == 1 || (i / 3) % 2 ? 255 : 0;
                const auto expected = fill(by_level[0]->*line.entry, field, stride, written);
                for (const auto &twin : twins)
                    ASSERT_EQ(fill(twin.table->*line.entry, field, stride, written), expected)
                        << line.name << " at " << twin.level << ", stride " << stride
                        << ", content " << content;
            }
        }
}

// Every 6-tuple over {0, 1, 2, 127, 254, 255} (every order and tie
// pattern, both parities of the middle pair's sum), laid out so that byte
// 3k + 1 of a Y8 line sees tuple k as its neighbourhood; every inner byte
// is checked, the mixed neighbourhoods between tuples too.
TEST(FilledLineTwins, MedianLinesGiveTheMedianOfSixOfEveryNeighbourhood) {
    const uint8_t values[] = {0, 1, 2, 127, 254, 255};
    Bytes above, below;
    for (uint32_t code = 0; code < 6 * 6 * 6 * 6 * 6 * 6; ++code)
        for (uint32_t k = 0, c = code; k < 6; ++k, c /= 6)
            (k < 3 ? above : below).push_back(values[c % 6]);
    const uint32_t stride = static_cast<uint32_t>(above.size());
    Bytes field = above;
    field.insert(field.end(), below.begin(), below.end());
    auto tables = orv_test::twin_tables(by_level);
    tables.insert(tables.begin(), {"plain", by_level[0]});
    for (const auto &table : tables) {
        Bytes pair(2 * size_t(stride));
        table.table->median_grey(field.data(), stride, pair.data());
        ASSERT_EQ(Bytes(pair.begin(), pair.begin() + stride), above) << table.level;
        for (uint32_t i = 1; i + 1 < stride; ++i)
            ASSERT_EQ(pair[stride + i],
                      orv::field_lines::median_of_six(above[i - 1], above[i], above[i + 1],
                                                      below[i - 1], below[i], below[i + 1]))
                << "byte " << i << " at " << table.level;
    }
}

} // namespace
