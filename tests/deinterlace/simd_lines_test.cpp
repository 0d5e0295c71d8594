// The SSE2 twins of LineAve's mean line and Bilinear's Y8, 24-bit and
// 32-bit lines against the plain byte loops, byte for byte: strides up to
// 70 and a few long odd ones (every short shape, and strides that are not
// a multiple of the pixel), lines at odd addresses, field lines sized to
// exactly the bytes the plain loop reads and a preset output with a guard
// byte after the line.
#include "deinterlace/byte_lines.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

namespace {

#if defined(__SSE2__)

using Bytes = std::vector<uint8_t>;
using orv::deinterlace::FillLine;
using orv::deinterlace::WeightedKernel;
using orv::deinterlace::WeightedRunsSse2;

// `shortest_line`: the bytes a line reads from each field line and writes
// even when the stride is shorter (the 24-bit line's two pixels of means).
struct LineTwins {
    const char *name;
    FillLine plain, twin;
    uint32_t least_stride, shortest_line;
};

const LineTwins twins[] = {
    {"LineAve", orv::deinterlace::average_lines,
     orv::deinterlace::average_lines_sse2, 0, 0},
    {"Bilinear Y8", orv::deinterlace::grey_line<WeightedKernel>,
     orv::deinterlace::grey_line<WeightedKernel, WeightedRunsSse2>,
     WeightedKernel::least_grey_stride, 0},
    {"Bilinear 24-bit", orv::deinterlace::triple_line<WeightedKernel>,
     orv::deinterlace::triple_line<WeightedKernel, WeightedRunsSse2>, 3, 6},
    {"Bilinear 32-bit", orv::deinterlace::quad_line<WeightedKernel>,
     orv::deinterlace::quad_line<WeightedKernel, WeightedRunsSse2>, 8, 0},
};

std::vector<uint32_t> strides() {
    std::vector<uint32_t> s;
    for (uint32_t i = 0; i <= 70; ++i) s.push_back(i);
    for (uint32_t i : {255u, 1001u, 4097u}) s.push_back(i);
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

struct Result {
    Bytes out;
    uintptr_t moved;
};

// The two field lines start `offset` bytes into an exactly sized buffer;
// the output line starts `offset` bytes in and has one guard byte after it.
Result fill(FillLine line, const Bytes &field, uint32_t offset,
            uint32_t stride, size_t extent) {
    Result r{Bytes(offset + extent + 1, 0x5A), 0};
    r.moved = line(field.data() + offset, stride, r.out.data() + offset);
    return r;
}

struct Case {
    const LineTwins *line;
    uint32_t stride, offset;
    Content content;

    size_t extent() const {
        return stride > line->shortest_line ? stride : line->shortest_line;
    }
};

std::vector<Case> cases() {
    std::vector<Case> all;
    for (const auto &line : twins)
        for (uint32_t stride : strides())
            for (uint32_t offset : {0u, 1u, 7u})
                for (Content c :
                     {Content::Random, Content::Full, Content::Stripes})
                    if (stride >= line.least_stride)
                        all.push_back({&line, stride, offset, c});
    return all;
}

TEST(FilledLineTwins, WriteTheSameBytesAsThePlainLoops) {
    uint32_t seed = 7;
    for (const Case &c : cases()) {
        const Bytes field = field_bytes(c.offset + c.stride + c.extent(),
                                        c.content, ++seed);
        const Result expected =
            fill(c.line->plain, field, c.offset, c.stride, c.extent());
        const Result actual =
            fill(c.line->twin, field, c.offset, c.stride, c.extent());
        ASSERT_EQ(actual.moved, expected.moved);
        ASSERT_EQ(actual.out, expected.out)
            << c.line->name << " stride " << c.stride << " offset "
            << c.offset << " content " << int(c.content);
    }
}

#else

TEST(FilledLineTwins, WriteTheSameBytesAsThePlainLoops) {
    GTEST_SKIP() << "no SSE2 on this target: the methods run the plain loops";
}

#endif

} // namespace
