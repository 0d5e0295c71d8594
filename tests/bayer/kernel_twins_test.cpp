// Every demosaic member walked with each SIMD level's line runs against the
// same walk with none, byte for byte: widths 2 to 67 and a few long ones,
// heights 1 to 8, depths 7 to 16 with samples above the depth, tight and
// padded strides. Both buffers end flush against an inaccessible page where
// the plain walk stops; X bytes and padding start as a pattern and must stay.
#include "bayer/ave.h"
#include "bayer/dup.h"
#include "bayer/med.h"
#include "bayer/member_table.h"
#include "support/demosaic_extent.h"
#include "support/guarded_bytes.h"
#include "support/kernel_levels.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

namespace {

using namespace orv::bayer;
using Bytes = std::vector<uint8_t>;
using Walk = void (*)(const Image &, const BayerKernels &);

// The members' walks, in the order of the member table.
#define ORV_TEST_WALK(SRC, OUT, METHOD, PHASE)                                \
    &ORV_BAYER_METHOD_TYPE_##METHOD::walk<member_words::SRC, member_words::OUT, \
                                          member_words::PHASE>,
const Walk walks[] = {ORV_BAYER_MEMBERS(ORV_TEST_WALK)};
#undef ORV_TEST_WALK

struct Shape {
    uint32_t width, height, depth;
    uint32_t src_padding, dst_padding; // bytes past each line
};

std::vector<Shape> shapes() {
    static const uint32_t heights[] = {1, 2, 3, 5, 8};
    // 9 and 7 besides the formats' depths: any depth is narrowed as stated
    // (7 wraps the narrowing shift, and must stay on the plain walk).
    static const uint32_t depths[] = {10, 12, 14, 16, 9, 7};
    std::vector<Shape> all;
    uint32_t i = 0;
    for (uint32_t w = 2; w <= 67; ++w, ++i)
        all.push_back({w, heights[i % 5], depths[i % 6], i % 3 ? 6u : 0u, i % 2 ? 7u : 0u});
    for (uint32_t w : {255u, 1000u, 1921u})
        for (uint32_t h : {2u, 7u})
            all.push_back({w, h, depths[++i % 6], (w & 2u) * 2, 0});
    return all;
}

constexpr size_t kRoom = size_t(1921 + 8) * 4 * 9;

// What walking `member` over `s` with `kernels` leaves in the destination,
// from random samples of `seed`.
Bytes walk(size_t member, const Shape &s, uint32_t seed, const BayerKernels &kernels) {
    static orv_test::GuardedBytes in(kRoom), out(kRoom);
    const DemosaicMember &m = kDemosaicMembers[member];
    const uint32_t sample = m.n_bit ? 2 : 1, pixel = orv_test::demosaic_pixel_bytes(m.output);
    const uint32_t src_stride = s.width * sample + s.src_padding;
    const uint32_t dst_stride = s.width * pixel + s.dst_padding;
    const bool rgb16_c = m.output == (ORV_FORMAT_RGB16 & 0xFFu) && m.phase == ORV_BAYER_PHASE_C;
    const orv_test::DemosaicExtent e =
        orv_test::demosaic_extent(orv_test::method_of(m.method), rgb16_c, s.width, s.height,
                                  sample, src_stride, pixel, dst_stride);
    const Image image{in.place(orv_test::random_bytes(e.source, seed)),
                      line_pitch(src_stride, s.width * sample, sample - 1),
                      out.place(Bytes(e.destination, 0xA5)),
                      line_pitch(dst_stride, s.width * pixel, 0),
                      s.width, s.height, Scale::of_depth(m.n_bit ? s.depth : 8)};
    walks[member](image, kernels);
    return out.last(e.destination);
}

const BayerKernels *const by_level[orv::kSimdLevels] = {
    &orv::plain::bayer_kernels, nullptr,
#if ORV_SIMD_TWINS
    &orv::avx2::bayer_kernels, &orv::avx512::bayer_kernels
#else
    nullptr, nullptr
#endif
};

TEST(DemosaicRunTwins, WriteExactlyThePlainWalksBytes) {
    ASSERT_EQ(std::size(walks), std::size(kDemosaicMembers));
    const auto twins = orv_test::twin_tables(by_level);
    if (twins.empty()) GTEST_SKIP() << "no demosaic runs at this level";
    uint32_t seed = 1;
    for (size_t i = 0; i < std::size(walks); ++i)
        for (const Shape &s : shapes()) {
            const Bytes expected = walk(i, s, ++seed, *by_level[0]);
            for (const auto &twin : twins)
                ASSERT_EQ(walk(i, s, seed, *twin.table), expected)
                    << kDemosaicMembers[i].name << " at " << twin.level << ", " << s.width
                    << " x " << s.height << ", depth " << s.depth;
        }
}

} // namespace
