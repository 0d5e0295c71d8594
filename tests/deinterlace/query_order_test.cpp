// What the de-interlacers ask of their buffers, in order, and where each
// refusal stops asking.
#include "support/trace_buffer.h"

#include <orvane/deinterlace.h>

#include <gtest/gtest.h>

#include <functional>

namespace {

using orv_test::FakeBuffer;
using orv_test::fake_image;
using orv_test::query_log;
using Log = std::vector<std::string>;

const Log checks = {"field:11", "frame:11", "field:3", "frame:3"};
const Log geometry = {"field:4", "frame:4", "field:2", "frame:2",
                      "field:1", "frame:1"};

Log joined(std::initializer_list<Log> parts) {
    Log all;
    for (const Log &part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

TEST(FieldToFrameQueries, ComeInTheirFixedOrder) {
    uint8_t field_pixels[8] = {}, frame_pixels[16] = {};
    for (uint32_t method = 0; method < 4; ++method) {
        auto field = fake_image("field", field_pixels, ORV_FORMAT_Y8, 4, 2, 4);
        auto frame = fake_image("frame", frame_pixels, ORV_FORMAT_Y8, 4, 4, 4);
        const Log format = method >= OVC_FIELD_BILINEAR ? Log{"field:7"} : Log{};
        orv_test::clear_query_log();
        EXPECT_EQ(OVC_FieldToFrame(field.handle(), frame.handle(), method, 0), ORV_OK);
        EXPECT_EQ(query_log(), joined({{"field:11", "frame:11"}, checks, format, geometry}))
            << "method " << method;
    }
}

TEST(FieldToFrameQueries, RefusalsStopWhereTheyAreFound) {
    using Routine = std::function<ORV_STATUS(OFS_HANDLE, OFS_HANDLE)>;
    auto method = [](uint32_t m) {
        return Routine([m](OFS_HANDLE f, OFS_HANDLE g) { return OVC_FieldToFrame(f, g, m, 1); });
    };
    auto direct = [](ORV_STATUS (*routine)(OFS_HANDLE, OFS_HANDLE, uint32_t)) {
        return Routine([routine](OFS_HANDLE f, OFS_HANDLE g) { return routine(f, g, 1); });
    };
    struct Case {
        const char *what;
        Routine routine;
        std::function<void(FakeBuffer &, FakeBuffer &)> spoil;
        ORV_STATUS status;
        Log expected;
    };
    const Case cases[] = {
        {"silent field validity", direct(OVC_FieldToFrame_Median),
         [](FakeBuffer &f, FakeBuffer &) { f.values.erase(OFS_BUFFER_VALID); },
         ORV_ERROR_BAD_PARAM, {"field:11"}},
        {"dispatcher, frame invalid", method(OVC_FIELD_LINEDUP),
         [](FakeBuffer &, FakeBuffer &g) { g.values[OFS_BUFFER_VALID] = 0; },
         ORV_ERROR_BAD_PARAM, {"field:11", "frame:11"}},
        {"dispatcher, method 4", method(4), [](FakeBuffer &, FakeBuffer &) {},
         ORV_ERROR_NOT_SUPPORTED, {"field:11", "frame:11"}},
        {"routine, frame invalid goes on", direct(OVC_FieldToFrame_Bilinear),
         [](FakeBuffer &, FakeBuffer &g) { g.values.erase(OFS_BUFFER_VALID); },
         ORV_OK, joined({checks, {"field:7"}, geometry})},
        {"field address null", direct(OVC_FieldToFrame_LineAve),
         [](FakeBuffer &f, FakeBuffer &) { f.values[OFS_START_ADDR] = 0; },
         ORV_ERROR_BAD_PARAM, {"field:11", "frame:11", "field:3"}},
        {"frame address null", direct(OVC_FieldToFrame_Median),
         [](FakeBuffer &, FakeBuffer &g) { g.values[OFS_START_ADDR] = 0; },
         ORV_ERROR_BAD_PARAM, checks},
        {"format zero", direct(OVC_FieldToFrame_Bilinear),
         [](FakeBuffer &f, FakeBuffer &) { f.values[OFS_FORMAT] = 0; },
         ORV_ERROR_BAD_PARAM, joined({checks, {"field:7"}})},
        {"format not laid out", direct(OVC_FieldToFrame_Median),
         [](FakeBuffer &f, FakeBuffer &) { f.values[OFS_FORMAT] = ORV_FORMAT_Y16; },
         ORV_ERROR_NOT_SUPPORTED, joined({checks, {"field:7"}, geometry})},
        {"frame too small", direct(OVC_FieldToFrame_LineDup),
         [](FakeBuffer &, FakeBuffer &g) { g.values[OFS_HEIGHT] = 3; },
         ORV_ERROR_BAD_PARAM, joined({checks, geometry})},
    };
    for (const Case &c : cases) {
        uint8_t field_pixels[8] = {}, frame_pixels[16] = {};
        auto field = fake_image("field", field_pixels, ORV_FORMAT_Y8, 4, 2, 4);
        auto frame = fake_image("frame", frame_pixels, ORV_FORMAT_Y8, 4, 4, 4);
        c.spoil(field, frame);
        orv_test::clear_query_log();
        EXPECT_EQ(c.routine(field.handle(), frame.handle()), c.status) << c.what;
        EXPECT_EQ(query_log(), c.expected) << c.what;
    }
}

} // namespace
