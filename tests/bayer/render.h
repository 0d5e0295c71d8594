// Worked examples of the demosaic routines: a small mosaic given sample by
// sample, run through one routine, and single pixels read back.
#ifndef ORVANE_TESTS_BAYER_RENDER_H
#define ORVANE_TESTS_BAYER_RENDER_H

#include "bayer/member_table.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace bayer_test {

using orv::bayer::DemosaicMember;

inline const DemosaicMember &member(const std::string &name) {
    for (const DemosaicMember &m : orv::bayer::kDemosaicMembers)
        if (name == m.name) return m;
    ADD_FAILURE() << "no demosaic routine " << name;
    return orv::bayer::kDemosaicMembers[0];
}

inline uint32_t bytes_per_pixel(const DemosaicMember &m) {
    return m.output == 0x11 ? 3 : (m.output == 0x08 || m.output == 0x0D) ? 4 : 2;
}

// Runs `m` on a W x H mosaic given line after line at a tight stride
// (`samples` may run past the image, for the routines' reads beyond it)
// and returns every destination line it writes, tight, preset to 0xEE:
// dup writes line 0 at least, ave and med two lines at least.
inline std::vector<uint8_t> render(const DemosaicMember &m, uint32_t width,
                                   uint32_t height,
                                   const std::vector<uint32_t> &samples,
                                   uint32_t depth = 8) {
    const uint32_t size = m.n_bit ? 2 : 1, bpp = bytes_per_pixel(m);
    const uint32_t lines =
        std::max(height, m.method == ORV_BAYER_METHOD_DUP ? 1u : 2u);
    const size_t count = std::max<size_t>(samples.size(), size_t(width) * (lines + 1) + 2);
    orv_test::TestImage source(m.n_bit ? ORV_FORMAT_BAY16 : ORV_FORMAT_BAY8, width,
                               height, width * size, count * size, 0);
    for (size_t i = 0; i < samples.size(); ++i)
        for (uint32_t b = 0; b < size; ++b) source[i * size + b] = uint8_t(samples[i] >> (8 * b));
    orv_test::TestImage destination(0xC0022600u | m.output, width, height, width * bpp,
                                    size_t(width) * bpp * lines, 0xEE);
    EXPECT_EQ(m.call(source.handle(), destination.handle(), depth), ORV_OK) << m.name;
    return destination.bytes();
}

// One pixel of a render: B, G and R of the byte outputs, or the 16-bit
// word of the packed ones.
struct Rendered {
    uint8_t blue, green, red;
    uint16_t word;
};
inline Rendered pixel(const std::vector<uint8_t> &d, const DemosaicMember &m,
                      uint32_t width, uint32_t y, uint32_t x) {
    const uint8_t *p = d.data() + (size_t(y) * width + x) * bytes_per_pixel(m);
    switch (m.output) {
    case 0x08: case 0x11: return {p[0], p[1], p[2], 0};
    case 0x0D: return {p[2], p[1], p[0], 0};
    default: return {0, 0, 0, uint16_t(p[0] | p[1] << 8)};
    }
}

} // namespace bayer_test

#endif // ORVANE_TESTS_BAYER_RENDER_H
