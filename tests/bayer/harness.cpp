// Test images for the demosaic routines and the comparison with the model.
#include "bayer/harness.h"

#include "support/test_image.h"

#include <cstring>
#include <sstream>

namespace bayer_test {

using bayer_model::Geometry;
using bayer_model::Method;
using bayer_model::Output;
using bayer_model::Source;
using orv_test::TestImage;

namespace {

uint32_t destination_format(Output output) {
    switch (output) {
    case Output::BGRX32: return ORV_FORMAT_BGRX32;
    case Output::RGBX32: return ORV_FORMAT_RGBX32;
    case Output::BGR24: return ORV_FORMAT_BGR24;
    case Output::RGB16: return ORV_FORMAT_RGB16;
    default: return ORV_FORMAT_BGR16;
    }
}

size_t model_memory_size(const Member &m, const Geometry &g) {
    const size_t lines = bayer_model::lines_written(m.kind.method, g.height);
    return (lines + 3) * g.source_stride + 4 * bayer_model::sample_size(m.kind.source);
}

struct Outcome {
    ORV_STATUS status;
    std::vector<uint8_t> got;
    bayer_model::Result expected;
};

Outcome run(const Member &m, const Geometry &g, const std::vector<uint8_t> &source,
            const std::vector<uint8_t> &preset) {
    Outcome o{ORV_OK, {}, bayer_model::demosaic(m.kind, g, source, preset)};
    const uint32_t format = m.kind.source == Source::BAY8 ? ORV_FORMAT_BAY8 : ORV_FORMAT_BAY12;
    TestImage src(format, g.width, g.height, g.source_stride, o.expected.source_extent);
    std::memcpy(src.data(), source.data(), src.size());
    TestImage dst(destination_format(m.kind.output), g.width, g.height,
                  g.destination_stride, preset.size());
    std::memcpy(dst.data(), preset.data(), dst.size());
    o.status = call(m, src.handle(), dst.handle(), g.depth);
    o.got = dst.bytes();
    return o;
}

::testing::AssertionResult compare(const Member &m, const Geometry &g, const Outcome &o) {
    std::ostringstream where;
    where << m.name << " W=" << g.width << " H=" << g.height
          << " source stride=" << g.source_stride
          << " destination stride=" << g.destination_stride << " depth=" << g.depth;
    if (o.status != ORV_OK)
        return ::testing::AssertionFailure() << where.str() << ": status " << o.status;
    const uint32_t bpp = bayer_model::bytes_per_pixel(m.kind.output);
    for (size_t i = 0; i < o.got.size(); ++i) {
        if (!o.expected.compared[i] || o.got[i] == o.expected.destination[i]) continue;
        const size_t line = i / g.destination_stride, offset = i % g.destination_stride;
        std::ostringstream what;
        what << where.str() << ": line " << line;
        if (offset < size_t(g.width) * bpp)
            what << " column " << offset / bpp << " byte " << offset % bpp;
        else
            what << " padding byte " << offset;
        what << std::hex << ": expected 0x" << int(o.expected.destination[i]) << " got 0x"
             << int(o.got[i]);
        return ::testing::AssertionFailure() << what.str();
    }
    return ::testing::AssertionSuccess();
}

std::vector<uint8_t> source_memory(const Member &m, const Geometry &g, uint32_t seed) {
    std::vector<uint8_t> bytes = orv_test::random_bytes(model_memory_size(m, g), seed);
    // Half the n-bit images keep their samples within the depth; the other
    // half have bits set above it, which the routines must wrap.
    if (m.kind.source == Source::BAYn && (seed & 1) && g.depth > 8 && g.depth < 16)
        for (size_t i = 1; i < bytes.size(); i += 2)
            bytes[i] &= uint8_t((1u << (g.depth - 8)) - 1);
    return bytes;
}

::testing::AssertionResult matches_model(const Member &m, const Geometry &g,
                                         const std::vector<uint8_t> &source,
                                         const std::vector<uint8_t> &preset) {
    return compare(m, g, run(m, g, source, preset));
}

} // namespace

void check_random_images(Method method) {
    const uint32_t widths[] = {2, 3, 4, 5, 6, 7, 10, 13, 32};
    const uint32_t heights[] = {0, 1, 2, 3, 4, 5, 8, 17};
    // Depths 7 and 40 take the shift counts round modulo 32.
    const uint32_t depths[] = {7, 9, 10, 12, 14, 16, 40};
    const std::vector<Member> list = members_of(method);
    ASSERT_FALSE(list.empty());
    uint32_t seed = 1;
    int failures = 0;
    for (const Member &m : list) {
        const uint32_t size = bayer_model::sample_size(m.kind.source);
        const uint32_t bpp = bayer_model::bytes_per_pixel(m.kind.output);
        for (uint32_t w : widths)
            for (uint32_t h : heights)
                for (uint32_t pad = 0; pad < 2; ++pad, ++seed) {
                    // Height 0 is defined for dup only.
                    if (h == 0 && method != Method::dup) continue;
                    const Geometry g{w, h, w * size + pad * 2 * (size + 1),
                                     w * bpp + pad * 5,
                                     size == 1 ? 8 : depths[seed % 7]};
                    const std::vector<uint8_t> preset = orv_test::random_bytes(
                        bayer_model::destination_size(m.kind, g), seed * 7919);
                    const auto r = matches_model(m, g, source_memory(m, g, seed), preset);
                    if (!r) {
                        ADD_FAILURE() << r.message();
                        if (++failures == 12) return;
                    }
                }
    }
}

void check_flat_images(Method method, UnscaledSites unscaled) {
    struct Flat {
        uint32_t depth, sample;
    };
    // Depth 8 is the BAY8 case; the last two n-bit samples lie above their
    // depth and wrap.
    const Flat flats[] = {{8, 0x5A}, {12, 0x5A3}, {16, 0xA55A}, {12, 0x0FF0}, {10, 0xFFFF}};
    const uint32_t sizes[][2] = {{6, 5}, {4, 2}, {8, 4}};
    for (const Member &m : members_of(method))
        for (const Flat &f : flats) {
            if ((f.depth == 8) != (m.kind.source == Source::BAY8)) continue;
            for (const auto &size : sizes) {
                const uint32_t w = size[0], h = size[1];
                const uint32_t ss = bayer_model::sample_size(m.kind.source);
                const uint32_t bpp = bayer_model::bytes_per_pixel(m.kind.output);
                const Geometry g{w, h, w * ss, w * bpp, f.depth};
                std::vector<uint8_t> source(model_memory_size(m, g));
                for (size_t i = 0; i < source.size(); ++i)
                    source[i] = uint8_t(f.sample >> (8 * (i % ss)));
                const std::vector<uint8_t> preset =
                    orv_test::random_bytes(bayer_model::destination_size(m.kind, g), w * h);
                const Outcome o = run(m, g, source, preset);
                EXPECT_EQ(o.status, ORV_OK) << m.name;
                std::vector<uint8_t> expected = preset;
                for (uint32_t y = 0; y < bayer_model::lines_written(method, h); ++y)
                    for (uint32_t x = 0; x < w; ++x) {
                        const unsigned u = unscaled ? unscaled(m, w, h, y, x) : 0;
                        bayer_model::pack(m.kind, f.depth, {f.sample, (u & 1) != 0, false},
                                          {f.sample, (u & 2) != 0, false},
                                          {f.sample, (u & 4) != 0, false},
                                          expected.data() + y * g.destination_stride + x * bpp);
                    }
                EXPECT_EQ(o.got, expected) << m.name << " flat 0x" << std::hex << f.sample
                                           << std::dec << " depth " << f.depth << ", " << w
                                           << " x " << h;
            }
        }
}

std::vector<uint8_t> render(const Member &m, uint32_t width, uint32_t height,
                            const std::vector<uint32_t> &samples, uint32_t depth) {
    const uint32_t ss = bayer_model::sample_size(m.kind.source);
    const Geometry g{width, height, width * ss,
                     width * bayer_model::bytes_per_pixel(m.kind.output),
                     m.kind.source == Source::BAY8 ? 8 : depth};
    std::vector<uint8_t> source(model_memory_size(m, g));
    for (size_t i = 0; i < samples.size(); ++i)
        for (uint32_t b = 0; b < ss; ++b) source.at(i * ss + b) = uint8_t(samples[i] >> (8 * b));
    const std::vector<uint8_t> preset(bayer_model::destination_size(m.kind, g), 0xEE);
    const Outcome o = run(m, g, source, preset);
    EXPECT_TRUE(compare(m, g, o));
    return o.got;
}

Rendered pixel(const std::vector<uint8_t> &destination, const Member &m, uint32_t width,
               uint32_t y, uint32_t x) {
    const uint32_t bpp = bayer_model::bytes_per_pixel(m.kind.output);
    const uint8_t *p = destination.data() + (size_t(y) * width + x) * bpp;
    switch (m.kind.output) {
    case Output::BGRX32:
    case Output::BGR24: return {p[0], p[1], p[2], 0};
    case Output::RGBX32: return {p[2], p[1], p[0], 0};
    default: return {0, 0, 0, uint16_t(p[0] | p[1] << 8)};
    }
}

} // namespace bayer_test
