// The order in which OVC_Convert asks the buffer library about its two
// buffers, and where each failure stops it. Runs against the recording
// buffer library.
#include "support/trace_buffer.h"

#include <orvaneimage.h>

#include <gtest/gtest.h>

namespace {

using orv_test::FakeBuffer;
using orv_test::query_log;

const std::vector<std::string> full_order = {
    "src:11", "dst:11", "dst:7", "src:7", "src:3", "dst:3", "src:4",
    "dst:4",  "src:2",  "dst:2", "src:1", "dst:1", "src:9", "src:10"};

std::vector<std::string> first(size_t n) {
    return {full_order.begin(), full_order.begin() + n};
}

struct Case {
    const char *what;
    void (*spoil)(FakeBuffer &src, FakeBuffer &dst);
    ORV_STATUS status;
    size_t queries; // how many of full_order are made
};

const Case cases[] = {
    {"success", [](FakeBuffer &, FakeBuffer &) {}, ORV_OK, 14},
    {"source validity silent", [](FakeBuffer &s, FakeBuffer &) { s.values.erase(OFS_BUFFER_VALID); }, ORV_ERROR_BAD_PARAM, 1},
    {"source invalid", [](FakeBuffer &s, FakeBuffer &) { s.values[OFS_BUFFER_VALID] = 0; }, ORV_ERROR_BAD_PARAM, 1},
    {"destination validity silent", [](FakeBuffer &, FakeBuffer &d) { d.values.erase(OFS_BUFFER_VALID); }, ORV_ERROR_BAD_PARAM, 2},
    {"destination invalid", [](FakeBuffer &, FakeBuffer &d) { d.values[OFS_BUFFER_VALID] = 0; }, ORV_ERROR_BAD_PARAM, 2},
    {"destination format zero", [](FakeBuffer &, FakeBuffer &d) { d.values[OFS_FORMAT] = 0; }, ORV_ERROR_BAD_PARAM, 3},
    {"source format zero", [](FakeBuffer &s, FakeBuffer &) { s.values[OFS_FORMAT] = 0; }, ORV_ERROR_BAD_PARAM, 4},
    {"source address null", [](FakeBuffer &s, FakeBuffer &) { s.values[OFS_START_ADDR] = 0; }, ORV_ERROR_BAD_PARAM, 5},
    {"destination address null", [](FakeBuffer &, FakeBuffer &d) { d.values[OFS_START_ADDR] = 0; }, ORV_ERROR_BAD_PARAM, 6},
    {"unsupported pair", [](FakeBuffer &, FakeBuffer &d) { d.values[OFS_FORMAT] = ORV_FORMAT_Y12P; }, ORV_ERROR_NOT_SUPPORTED, 14},
    {"too small", [](FakeBuffer &, FakeBuffer &d) { d.values[OFS_STRIDE] = 5; }, ORV_ERROR_BAD_PARAM, 14},
    // A Bayer source is queried no further by the routing itself: a refused
    // method, or a destination too small, ends the call after the same 14.
    {"Bayer method refused", [](FakeBuffer &s, FakeBuffer &) { s.values[OFS_FORMAT] = ORV_FORMAT_BAY8; }, ORV_ERROR_NOT_IMPLEMENTED, 14},
    {"Bayer too small", [](FakeBuffer &s, FakeBuffer &d) { s.values[OFS_FORMAT] = ORV_FORMAT_BAY8; s.values[OFS_BAYER_METHOD] = ORV_BAYER_METHOD_DUP; s.values[OFS_BAYER_PHASE] = ORV_BAYER_PHASE_A; d.values[OFS_STRIDE] = 11; }, ORV_ERROR_BAD_PARAM, 14},
    // Query statuses are never looked at: a library that reports failure
    // but writes its values still gets a conversion.
    {"queries report failure", [](FakeBuffer &s, FakeBuffer &d) { s.status = d.status = 99; }, ORV_OK, 14},
};

TEST(ConvertQueryOrder, QueriesComeInOrderAndStopAtTheFirstFailure) {
    for (const Case &c : cases) {
        uint8_t pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
        uint8_t out[24] = {0};
        FakeBuffer src = orv_test::fake_image("src", pixels, ORV_FORMAT_Y8, 4, 2, 4);
        FakeBuffer dst = orv_test::fake_image("dst", out, ORV_FORMAT_BGR24, 4, 2, 12);
        c.spoil(src, dst);
        orv_test::clear_query_log();
        EXPECT_EQ(OVC_Convert(src.handle(), dst.handle()), c.status) << c.what;
        EXPECT_EQ(query_log(), first(c.queries)) << c.what;
        if (c.status == ORV_OK)
            EXPECT_EQ(out[23], 8) << c.what;
        else
            EXPECT_EQ(out[0], 0) << c.what;
    }
}

} // namespace
