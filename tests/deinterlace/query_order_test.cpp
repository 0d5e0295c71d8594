// What the de-interlacers ask of their buffers, in order.
#include "support/trace_buffer.h"

#include <orvane/deinterlace.h>

#include <gtest/gtest.h>

namespace {

using orv_test::fake_image;
using orv_test::query_log;
using Log = std::vector<std::string>;

TEST(FieldToFrameQueries, ComeInTheirFixedOrder) {
    const Log common_head = {"field:11", "frame:11", "field:3", "frame:3"};
    const Log common_tail = {"field:4", "frame:4", "field:2", "frame:2",
                             "field:1", "frame:1"};
    uint8_t field_pixels[8] = {}, frame_pixels[16] = {};
    for (uint32_t method = 0; method < 4; ++method) {
        auto field = fake_image("field", field_pixels, ORV_FORMAT_Y8, 4, 2, 4);
        auto frame = fake_image("frame", frame_pixels, ORV_FORMAT_Y8, 4, 4, 4);
        Log expected = {"field:11", "frame:11"}; // the dispatcher's
        expected.insert(expected.end(), common_head.begin(), common_head.end());
        if (method >= OVC_FIELD_BILINEAR) expected.push_back("field:7");
        expected.insert(expected.end(), common_tail.begin(), common_tail.end());
        orv_test::clear_query_log();
        EXPECT_EQ(OVC_FieldToFrame(field.handle(), frame.handle(), method, 0), ORV_OK);
        EXPECT_EQ(query_log(), expected) << "method " << method;
    }
}

TEST(FieldToFrameQueries, SilentValidityQueryOfTheFieldStopsAtOnce) {
    uint8_t pixels[16] = {};
    auto field = fake_image("field", pixels, ORV_FORMAT_Y8, 4, 2, 4);
    auto frame = fake_image("frame", pixels, ORV_FORMAT_Y8, 4, 4, 4);
    field.values.erase(OFS_BUFFER_VALID);
    orv_test::clear_query_log();
    EXPECT_EQ(OVC_FieldToFrame_Median(field.handle(), frame.handle(), 0),
              ORV_ERROR_BAD_PARAM);
    EXPECT_EQ(query_log(), Log{"field:11"});
}

} // namespace
