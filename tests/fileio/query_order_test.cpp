// What the file writers ask of their buffer, in order, and the raw
// writer's success status, which is the buffer library's own answer to
// the stride query.
#include "fileio/scratch.h"
#include "support/trace_buffer.h"

#include <orvane/fileio.h>

#include <gtest/gtest.h>

namespace {

using orv_test::fake_image;
using orv_test::query_log;
using Log = std::vector<std::string>;

struct OrderCase {
    const char *what;
    uint32_t file_type;
    Log expected;
};

TEST(FileWriteQueries, ComeInTheirFixedOrder) {
    const OrderCase cases[] = {
        {"raw", OVC_FILE_RAW, {"b:11", "b:3", "b:2", "b:4"}},
        {"tiff", OVC_FILE_TIFF, {"b:11", "b:11", "b:7", "b:3", "b:2", "b:1", "b:4"}},
        {"unknown type", 7, {"b:11"}},
    };
    uint8_t pixels[8] = {};
    for (const auto &c : cases) {
        auto buffer = fake_image("b", pixels, ORV_FORMAT_Y8, 4, 2, 4);
        const std::string path = orv_test::scratch_path("order.bin");
        orv_test::clear_query_log();
        OVC_FileWrite(buffer.handle(), path.c_str(), c.file_type);
        EXPECT_EQ(query_log(), c.expected) << c.what;
    }
}

TEST(FileWriteQueries, RawSuccessIsTheStrideQuerysStatus) {
    uint8_t pixels[8] = {};
    auto buffer = fake_image("b", pixels, ORV_FORMAT_Y8, 4, 2, 4);
    buffer.status = 42;
    const std::string path = orv_test::scratch_path("status.bin");
    EXPECT_EQ(OVC_FileWrite(buffer.handle(), path.c_str(), OVC_FILE_RAW), 42u);
    EXPECT_EQ(orv_test::read_file(path).size(), 8u);
}

TEST(FileWriteQueries, SilentValidityQueryRefusesTheBuffer) {
    uint8_t pixels[8] = {};
    auto buffer = fake_image("b", pixels, ORV_FORMAT_Y8, 4, 2, 4);
    buffer.values.erase(OFS_BUFFER_VALID);
    const std::string path = orv_test::scratch_path("silent.bin");
    EXPECT_EQ(OVC_FileWrite(buffer.handle(), path.c_str(), OVC_FILE_RAW),
              ORV_ERROR_BAD_PARAM);
    EXPECT_EQ(OVC_FileWriteTiff(buffer.handle(), path.c_str()),
              ORV_ERROR_BAD_PARAM);
    EXPECT_FALSE(orv_test::file_exists(path));
}

} // namespace
