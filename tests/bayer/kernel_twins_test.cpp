// Every demosaic member walked with each SIMD level's line runs against
// the same walk with none, byte for byte: widths 2 to 67 and a few long
// ones, heights 1, 2, 3, 5 and 8, depths 7 to 16 with samples above the
// depth, tight and padded strides. The source ends flush against an
// inaccessible page at the last sample the plain walk reads (the reads
// past the image that the header gives), the destination at the last
// byte it writes, so a run that touches one byte more faults; the
// destination starts as a pattern, so the bytes the walk leaves (X bytes,
// padding) must stay.
#include "bayer/ave.h"
#include "bayer/dup.h"
#include "bayer/med.h"
#include "support/demosaic_extent.h"
#include "support/guarded_bytes.h"
#include "support/kernel_levels.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orv::bayer;
using Bytes = std::vector<uint8_t>;
using Walk = void (*)(const Image &, const BayerKernels &);

struct Member {
    std::string name;
    Walk walk;
    uint32_t sample_bytes, pixel_bytes;
    orv_test::DemosaicMethod method;
    bool rgb16_phase_c; // its shifted line below, line 0's last green
};

orv_test::DemosaicMethod method_named(const std::string &name) {
    return name == "dup"   ? orv_test::DemosaicMethod::dup
           : name == "ave" ? orv_test::DemosaicMethod::ave
                           : orv_test::DemosaicMethod::med;
}

#define ORV_TEST_MEMBER(SRC, OUT, METHOD, PHASE)                             \
    Member{"OVC_" #SRC "_to_" #OUT "_" #METHOD "_" #PHASE,                   \
           &ORV_BAYER_METHOD_TYPE_##METHOD::walk<member_words::SRC,           \
                                                 member_words::OUT,           \
                                                 member_words::PHASE>,        \
           member_words::SRC::size, member_words::OUT::bytes,                \
           method_named(#METHOD),                                             \
           std::string(#OUT #PHASE) == "RGB16C"},

const std::vector<Member> members = {ORV_BAYER_MEMBERS(ORV_TEST_MEMBER)};

#undef ORV_TEST_MEMBER

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
        all.push_back({w, heights[i % 5], depths[i % 6], i % 3 == 0 ? 0u : 6u,
                       i % 2 == 0 ? 0u : 7u});
    for (uint32_t w : {255u, 1000u, 1921u})
        for (uint32_t h : {2u, 7u})
            all.push_back({w, h, depths[++i % 6], (w & 2u) * 2, 0});
    return all;
}

constexpr size_t kRoom = size_t(1921 + 8) * 4 * 9;

// The bytes a walk of `m` over `s` reads from the source and writes.
orv_test::DemosaicExtent extent(const Member &m, const Shape &s) {
    return orv_test::demosaic_extent(
        m.method, m.rgb16_phase_c, s.width, s.height, m.sample_bytes,
        s.width * m.sample_bytes + s.src_padding, m.pixel_bytes,
        s.width * m.pixel_bytes + s.dst_padding);
}

Bytes walk(const Member &m, const Shape &s, const Bytes &source,
           const BayerKernels &kernels) {
    static orv_test::GuardedBytes in(kRoom), out(kRoom);
    const size_t written = extent(m, s).destination;
    Image image;
    image.src = in.place(source);
    image.dst = out.place(Bytes(written, 0xA5));
    image.width = s.width;
    image.height = s.height;
    image.src_pitch = line_pitch(s.width * m.sample_bytes + s.src_padding,
                                 s.width * m.sample_bytes, m.sample_bytes - 1);
    image.dst_pitch = line_pitch(s.width * m.pixel_bytes + s.dst_padding,
                                 s.width * m.pixel_bytes, 0);
    image.scale = Scale::of_depth(m.sample_bytes == 1 ? 8 : s.depth);
    m.walk(image, kernels);
    return out.last(written);
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
    ASSERT_EQ(members.size(), 81u);
    const auto twins = orv_test::twin_tables(by_level);
    if (twins.empty()) GTEST_SKIP() << "no demosaic runs at this level";
    uint32_t seed = 1;
    for (const Member &m : members)
        for (const Shape &s : shapes()) {
            const Bytes source =
                orv_test::random_bytes(extent(m, s).source, ++seed);
            const Bytes expected = walk(m, s, source, *by_level[0]);
            for (const auto &twin : twins)
                ASSERT_EQ(walk(m, s, source, *twin.table), expected)
                    << m.name << " at " << twin.level << ", " << s.width
                    << " x " << s.height << ", depth " << s.depth;
        }
}

} // namespace
