// Every vector twin of a line pair (a field line's copy and the filled
// line after it) against the plain pair, byte for byte, at every level up
// to the one in use: LineDup's, LineAve's and the Y8, 24-bit, 32-bit and
// YUV 4:2:2 pairs of Bilinear and Median; and the median lines at every
// level against median_of_six over every order and tie pattern of six
// values. Strides 0 to 70 (every short shape, one whole vector step and
// the tails after it) and a few long ones; the two field lines and the
// output end flush against an inaccessible page at the last byte the
// plain pair reads and writes, so a twin that touches one byte more
// faults; the output starts as a pattern.
#include "deinterlace/byte_lines.h"
#include "deinterlace/kernels.h"
#include "support/field_lines.h"
#include "support/guarded_bytes.h"
#include "support/kernel_levels.h"
#include "support/kernel_rows.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv::deinterlace::DeinterlaceKernels;
using orv::deinterlace::LinePair;
using Bytes = std::vector<uint8_t>;

using orv_test::FieldLine;

std::vector<uint32_t> strides() {
    std::vector<uint32_t> s;
    for (uint32_t i = 0; i <= 70; ++i) s.push_back(i);
    for (uint32_t i : {72u, 131u, 255u, 1001u, 4097u}) s.push_back(i);
    return s;
}

// Random lines, all-255 lines (the largest kernel sums) and lines of 0
// and 255 in runs of three (the largest differences between neighbours).
enum class Content { Random, Full, Stripes };

Bytes field_bytes(size_t count, Content content, uint32_t seed) {
    Bytes bytes = orv_test::random_bytes(count, seed);
    for (size_t i = 0; i < count; ++i) {
        if (content == Content::Full) bytes[i] = 255;
        if (content == Content::Stripes) bytes[i] = (i / 3) % 2 ? 255 : 0;
    }
    return bytes;
}

struct Filled {
    Bytes out;
    uintptr_t moved;
};

// The longest field: a line of 4097 bytes and the 4098 a YUV 4:2:2 line
// reads below it; the longest pair: the copy of that line and the 4098
// bytes of its filled line.
constexpr size_t kRoom = 4097 + 4098;

// The copy and the filled line of `pair`: `written` bytes from the copy's
// start.
Filled fill(LinePair pair, const Bytes &field, uint32_t stride,
            size_t written) {
    static orv_test::GuardedBytes in(kRoom), out(kRoom);
    const uint8_t *above = in.place(field);
    const uintptr_t moved =
        pair(above, stride, out.place(Bytes(written, 0xA5)));
    return {out.last(written), moved};
}

const DeinterlaceKernels *const by_level[orv::kSimdLevels] =
    ORV_TABLES_BY_LEVEL(deinterlace_kernels);

TEST(FilledLineTwins, WriteExactlyThePlainLinesBytes) {
    const auto twins = orv_test::twin_tables(by_level);
    if (twins.empty()) GTEST_SKIP() << "no SIMD level in use";
    uint32_t seed = 7;
    for (const FieldLine &line : orv_test::field_line_entries())
        for (uint32_t stride : strides()) {
            const orv_test::Filled filled =
                orv_test::filled_line(line.shape, line.median, stride);
            if (stride < filled.least_stride) continue;
            const size_t extent = filled.length;
            for (Content content :
                 {Content::Random, Content::Full, Content::Stripes}) {
                // The line below starts `stride` bytes after the one above.
                const size_t read = line.reads_line_below ? stride + extent : stride;
                const Bytes field = field_bytes(read, content, ++seed);
                const size_t written = stride + extent;
                const Filled expected =
                    fill(by_level[0]->*line.entry, field, stride, written);
                for (const auto &twin : twins) {
                    const Filled actual =
                        fill(twin.table->*line.entry, field, stride, written);
                    ASSERT_EQ(actual.moved, expected.moved)
                        << line.name << " at " << twin.level;
                    ASSERT_EQ(actual.out, expected.out)
                        << line.name << " at " << twin.level << ", stride "
                        << stride << ", content " << int(content);
                }
            }
        }
}

// Every 6-tuple over {0, 1, 2, 127, 254, 255} (every order of six
// distinct values, every tie pattern, both parities of the middle pair's
// sum, the ends of the byte range) and
// random tuples, laid out so that byte 3k + 1 of a Y8 line sees tuple k as
// its neighbourhood; every inner byte of the line is checked, so the mixed
// neighbourhoods between tuples count too.
TEST(FilledLineTwins, MedianLinesGiveTheMedianOfSixOfEveryNeighbourhood) {
    const uint8_t values[] = {0, 1, 2, 127, 254, 255};
    Bytes above, below;
    for (uint32_t code = 0; code < 6 * 6 * 6 * 6 * 6 * 6; ++code)
        for (uint32_t k = 0, c = code; k < 6; ++k, c /= 6)
            (k < 3 ? above : below).push_back(values[c % 6]);
    const Bytes noise = orv_test::random_bytes(2 * 3000, 11);
    above.insert(above.end(), noise.begin(), noise.begin() + 3000);
    below.insert(below.end(), noise.begin() + 3000, noise.end());
    const uint32_t stride = static_cast<uint32_t>(above.size());
    Bytes field = above;
    field.insert(field.end(), below.begin(), below.end());

    const auto twins = orv_test::twin_tables(by_level);
    std::vector<const DeinterlaceKernels *> tables = {by_level[0]};
    for (const auto &twin : twins) tables.push_back(twin.table);
    for (const DeinterlaceKernels *table : tables) {
        Bytes pair(2 * size_t(stride));
        table->median_grey(field.data(), stride, pair.data());
        ASSERT_EQ(Bytes(pair.begin(), pair.begin() + stride), above);
        const uint8_t *out = pair.data() + stride;
        for (uint32_t i = 1; i + 1 < stride; ++i)
            ASSERT_EQ(out[i], orv::field_lines::median_of_six(
                                  above[i - 1], above[i], above[i + 1],
                                  below[i - 1], below[i], below[i + 1]))
                << "byte " << i << " of the table at "
                << (table == by_level[0] ? "plain" : "a SIMD level");
    }
}

} // namespace
