// File output: the byte-order writers, raw dumps with their fault paths,
// and TIFF files byte for byte, including the fragments that the writer
// leaves open (read back after the writing process has exited) and files
// cut short by a full device or a file-size limit.
#include "fileio/scratch.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

using orv_test::file_exists;
using orv_test::read_file;
using orv_test::scratch_path;
using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

// ---- Byte-order writers ------------------------------------------------------

struct WriterCase {
    const char *name;
    int (*writer)(FILE *, uint32_t);
    uint32_t value;
    Bytes expected;
};

TEST(ByteOrderWriters, PutTheirBytesInOrderAndReturnTheLast) {
    const WriterCase cases[] = {
        {"ui32m", OVC_fput_ui32m, 0x11223344u, {0x11, 0x22, 0x33, 0x44}},
        {"ui32i", OVC_fput_ui32i, 0x11223344u, {0x44, 0x33, 0x22, 0x11}},
        {"ui16m", OVC_fput_ui16m, 0x12345u, {0x23, 0x45}},
        {"ui16i", OVC_fput_ui16i, 0x12345u, {0x45, 0x23}},
        {"ui8", OVC_fput_ui8, 0x1FFu, {0xFF}},
        {"ui32m high", OVC_fput_ui32m, 0xFF0000FEu, {0xFF, 0x00, 0x00, 0xFE}},
    };
    for (const auto &c : cases) {
        FILE *f = std::tmpfile();
        ASSERT_NE(f, nullptr);
        EXPECT_EQ(c.writer(f, c.value), c.expected.back()) << c.name;
        std::rewind(f);
        Bytes got(16);
        got.resize(std::fread(got.data(), 1, got.size(), f));
        EXPECT_EQ(got, c.expected) << c.name;
        std::fclose(f);
    }
}

TEST(ByteOrderWriters, ReturnEofWhenTheLastByteCannotBeWritten) {
    FILE *f = std::fopen("/dev/null", "rb");
    ASSERT_NE(f, nullptr);
    for (auto writer : {OVC_fput_ui32m, OVC_fput_ui32i, OVC_fput_ui16m,
                        OVC_fput_ui16i, OVC_fput_ui8})
        EXPECT_EQ(writer(f, 0x01020304u), EOF);
    std::fclose(f);
}

// ---- Raw dumps ------------------------------------------------------------------

struct RawCase {
    uint32_t width, height, stride;
};

TEST(RawFile, HoldsHeightTimesStrideBytesPaddingIncluded) {
    const RawCase cases[] = {{4, 3, 4}, {5, 2, 8}, {3, 0, 8}, {0, 3, 0},
                             {1, 1, 1}, {7, 5, 13}};
    for (const auto &c : cases) {
        // At least one byte, so an empty image still has an address.
        const size_t size = std::max<size_t>(size_t(c.stride) * c.height, 1);
        TestImage image(ORV_FORMAT_Y8, c.width, c.height, c.stride, size);
        const Bytes pixels = orv_test::random_bytes(image.size(), c.stride);
        std::copy(pixels.begin(), pixels.end(), image.data());
        const std::string path = scratch_path("raw.bin");
        EXPECT_EQ(OVC_FileWrite(image.handle(), path.c_str(), OVC_FILE_RAW),
                  ORV_OK);
        EXPECT_EQ(read_file(path),
                  Bytes(pixels.begin(),
                        pixels.begin() + size_t(c.stride) * c.height))
            << c.width << "x" << c.height << " stride " << c.stride;
    }
}

TEST(RawFile, ByteCountIsAWrapping32BitProduct) {
    // 0x10001 lines of 0x10000 bytes: the product wraps to 0x10000.
    TestImage image(ORV_FORMAT_Y8, 16, 0x10001u, 0x10000u, 0x10000u);
    const Bytes pixels = orv_test::random_bytes(image.size(), 7);
    std::copy(pixels.begin(), pixels.end(), image.data());
    const std::string path = scratch_path("wrapped.bin");
    EXPECT_EQ(OVC_FileWrite(image.handle(), path.c_str(), OVC_FILE_RAW), ORV_OK);
    EXPECT_EQ(read_file(path), pixels);
}

// The open-failure message quotes the path; one far longer than the
// message buffer must be cut short, not overrun it.
const std::string kLongMissingPath =
    "/nonexistent-orvane-dir/" + std::string(600, 'p') + ".out";

struct RawFault {
    const char *what;
    uint32_t file_type;
    const char *path; // null: a fresh scratch file
    void (*spoil)(TestImage &);
    ORV_STATUS status;
};

TEST(RawFile, FaultsGiveTheirStatuses) {
    auto keep = [](TestImage &) {};
    const RawFault faults[] = {
        {"type 0", 0, nullptr, keep, ORV_ERROR_NOT_SUPPORTED},
        {"type 1", 1, nullptr, keep, ORV_ERROR_NOT_SUPPORTED},
        {"type 4", 4, nullptr, keep, ORV_ERROR_NOT_SUPPORTED},
        {"invalid buffer", 4, nullptr,
         [](TestImage &i) { i.set_pointer(OFS_BUFFER_VALID, 0); },
         ORV_ERROR_BAD_PARAM},
        {"null address", OVC_FILE_RAW, nullptr,
         [](TestImage &i) { i.set_pointer(OFS_START_ADDR, 0); },
         ORV_ERROR_BAD_PARAM},
        {"path longer than the message", OVC_FILE_RAW, kLongMissingPath.c_str(),
         keep, ORV_ERROR_OPEN_FAILED},
    };
    for (const auto &f : faults) {
        TestImage image(ORV_FORMAT_Y8, 4, 2, 8);
        f.spoil(image);
        const std::string path = f.path ? f.path : scratch_path("fault.raw");
        EXPECT_EQ(OVC_FileWrite(image.handle(), path.c_str(), f.file_type),
                  f.status)
            << f.what;
        EXPECT_FALSE(file_exists(path)) << f.what;
    }
}

// ---- TIFF files -------------------------------------------------------------------

// The expected file, assembled from the layout of a big-endian
// single-strip TIFF as this library writes it.
struct BigEndian {
    Bytes bytes;
    void u16(uint32_t v) {
        bytes.push_back(uint8_t(v >> 8));
        bytes.push_back(uint8_t(v));
    }
    void u32(uint32_t v) {
        u16(v >> 16);
        u16(v & 0xFFFF);
    }
    void entry(uint32_t tag, uint32_t type, uint32_t count) {
        u16(tag);
        u16(type);
        u32(count);
    }
    void short_entry(uint32_t tag, uint32_t value) {
        entry(tag, 3, 1);
        u16(value);
        u16(0);
    }
};

Bytes expected_tiff(bool colour, uint32_t width, uint32_t height,
                    uint32_t stride, const uint8_t *pixels) {
    const uint32_t strip = colour ? 204 : 186;
    BigEndian f;
    f.u16(0x4D4D);
    f.u16(42);
    f.u32(8);
    f.u16(colour ? 14 : 13);
    f.entry(254, 4, 1);
    f.u32(0);
    f.short_entry(256, width & 0xFFFF);
    f.short_entry(257, height & 0xFFFF);
    if (colour) {
        f.entry(258, 3, 3);
        f.u32(182);
    } else {
        f.short_entry(258, 8);
    }
    f.short_entry(259, 1);
    f.short_entry(262, colour ? 2 : 1);
    f.entry(273, 4, 1);
    f.u32(strip);
    f.short_entry(277, colour ? 3 : 1);
    f.entry(278, 4, 1);
    f.u32(height);
    f.entry(279, 4, 1);
    f.u32(width * height * (colour ? 3 : 1));
    f.entry(282, 5, 1);
    f.u32(strip - 16);
    f.entry(283, 5, 1);
    f.u32(strip - 8);
    if (colour) f.short_entry(284, 1);
    f.short_entry(296, 1);
    f.u32(0);
    if (colour) {
        f.u16(8);
        f.u16(8);
        f.u16(8);
    }
    for (int i = 0; i < 2; ++i) {
        f.u32(300);
        f.u32(1);
    }
    EXPECT_EQ(f.bytes.size(), strip);
    for (uint32_t y = 0; y < height; ++y)
        f.bytes.insert(f.bytes.end(), pixels + size_t(y) * stride,
                       pixels + size_t(y) * stride + width);
    return f.bytes;
}

struct TiffCase {
    uint32_t format, width, height, stride;
};

TEST(TiffFile, FinishedFilesMatchTheLayoutByteForByte) {
    const TiffCase cases[] = {
        {ORV_FORMAT_Y8, 4, 2, 8},         {ORV_FORMAT_Y8, 5, 3, 5},
        {ORV_FORMAT_Y8, 3, 0, 4},         {ORV_FORMAT_Y8, 70000, 1, 70000},
        {ORV_FORMAT_BGR24, 4, 2, 12},     {ORV_FORMAT_BGR24, 3, 3, 16},
        {ORV_FORMAT_BGR24, 2, 0, 6},      {ORV_FORMAT_BGR24, 65537, 2, 196611},
        // Many stream buffers' worth: lines back to back, padded lines.
        {ORV_FORMAT_Y8, 1920, 1080, 1920}, {ORV_FORMAT_Y8, 1000, 7, 1000},
        {ORV_FORMAT_Y8, 641, 9, 700},      {ORV_FORMAT_BGR24, 1920, 540, 5760},
    };
    for (const auto &c : cases) {
        TestImage image(c.format, c.width, c.height, c.stride);
        const Bytes pixels = orv_test::random_bytes(image.size(), c.width);
        std::copy(pixels.begin(), pixels.end(), image.data());
        const std::string path = scratch_path("image.tif");
        EXPECT_EQ(OVC_FileWriteTiff(image.handle(), path.c_str()), ORV_OK);
        const Bytes expected = expected_tiff(c.format == ORV_FORMAT_BGR24,
                                             c.width, c.height, c.stride,
                                             pixels.data());
        EXPECT_EQ(read_file(path), expected)
            << std::hex << c.format << std::dec << " " << c.width << "x"
            << c.height << " stride " << c.stride;
    }
}

TEST(TiffFile, FileWriteOfType3WritesTheSameFile) {
    TestImage image(ORV_FORMAT_Y8, 4, 2, 8);
    const Bytes pixels = orv_test::random_bytes(image.size(), 3);
    std::copy(pixels.begin(), pixels.end(), image.data());
    const std::string path = scratch_path("via_file_write.tif");
    EXPECT_EQ(OVC_FileWrite(image.handle(), path.c_str(), OVC_FILE_TIFF), ORV_OK);
    EXPECT_EQ(read_file(path), expected_tiff(false, 4, 2, 8, pixels.data()));
    EXPECT_EQ(read_file(path).size(), 194u);
}

TEST(TiffFile, AnIndependentReaderAcceptsAGreyFile) {
    if (std::string(ORV_TIFFINFO).empty() ||
        std::string(ORV_TIFFINFO).find("NOTFOUND") != std::string::npos)
        GTEST_SKIP() << "tiffinfo (libtiff-tools) is not installed";
    TestImage image(ORV_FORMAT_Y8, 37, 11, 40);
    const std::string path = scratch_path("checked.tif");
    ASSERT_EQ(OVC_FileWriteTiff(image.handle(), path.c_str()), ORV_OK);
    const std::string report_path = scratch_path("tiffinfo.txt");
    const std::string command = std::string(ORV_TIFFINFO) + " -s " + path +
                                " > " + report_path + " 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const Bytes raw = read_file(report_path);
    std::string report(raw.begin(), raw.end());
    for (const char *expected :
         {"Image Width: 37 Image Length: 11", "Bits/Sample: 8",
          "Photometric Interpretation: min-is-black", "1 Strips:",
          "Samples/Pixel: 1", "Rows/Strip: 11"})
        EXPECT_NE(report.find(expected), std::string::npos)
            << expected << " not in:\n" << report;
    // The strip: offset 186, 37 x 11 = 407 bytes.
    report.erase(std::remove(report.begin(), report.end(), ' '), report.end());
    EXPECT_NE(report.find("0:[186,407]"), std::string::npos) << report;
}

// Runs `call` in a child process that then exits normally, so the stream
// a failing writer leaves open is flushed by the exit and not before. The
// child's exit code is the call's status, or 99 if any byte reached the
// file before the exit.
int status_after_exit(const std::string &path,
                      const std::function<ORV_STATUS()> &call) {
    const pid_t child = fork();
    if (child == 0) {
        const ORV_STATUS status = call();
        const bool flushed_early = !read_file(path).empty();
        std::exit(flushed_early ? 99 : int(status));
    }
    int wait_status = 0;
    waitpid(child, &wait_status, 0);
    return WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : -1;
}

struct Fragment {
    uint32_t format;
    ORV_STATUS status;
    bool colour_layout; // which finished file the fragment begins like
    size_t size;        // the file ends here
};

TEST(TiffFile, UnfinishedFormatsLeaveTheirFragmentInAnOpenStream) {
    const Fragment fragments[] = {
        {ORV_FORMAT_RGB24, ORV_ERROR_BAD_PARAM, true, 50},
        {ORV_FORMAT_Y16, ORV_ERROR_BAD_PARAM, false, 130},
        {ORV_FORMAT_BGRX32, ORV_ERROR_BAD_FORMAT, false, 8},
        {0x00022601u, ORV_ERROR_BAD_FORMAT, false, 8}, // Y8's low byte only
    };
    for (const auto &f : fragments) {
        TestImage image(f.format, 5, 3, 10);
        const std::string path = scratch_path("fragment.tif");
        EXPECT_EQ(status_after_exit(path,
                                    [&] {
                                        return OVC_FileWriteTiff(image.handle(),
                                                                 path.c_str());
                                    }),
                  int(f.status))
            << std::hex << f.format;
        // RGB24 ends after BitsPerSample's tag and type, with 14 entries
        // declared; Y16 after its StripByteCounts value (5 x 3), with 13
        // declared, BitsPerSample 16 and StripOffsets never patched.
        Bytes expected = expected_tiff(f.colour_layout, 5, 3, 10, image.data());
        expected.resize(f.size);
        if (f.format == ORV_FORMAT_Y16) {
            expected[55] = 16;
            std::fill(expected.begin() + 90, expected.begin() + 94, 0);
        }
        EXPECT_EQ(read_file(path), expected) << std::hex << f.format;
    }
}

struct UnseekableCase {
    uint32_t format;
    size_t bytes_before_first_offset;
};

TEST(TiffFile, AnUnseekableStreamStopsAtTheFirstOffsetItNeeds) {
    // A pipe cannot tell its position: the first ftell fails at the
    // BitsPerSample array's slot of a BGR24 file and at the StripOffsets
    // slot of a grey one.
    const UnseekableCase cases[] = {{ORV_FORMAT_Y8, 90}, {ORV_FORMAT_BGR24, 54}};
    for (const auto &c : cases) {
        int fds[2];
        ASSERT_EQ(pipe(fds), 0);
        const std::string path = "/proc/self/fd/" + std::to_string(fds[1]);
        TestImage image(c.format, 4, 2, 12);
        const pid_t child = fork();
        if (child == 0) {
            close(fds[0]);
            std::exit(int(OVC_FileWriteTiff(image.handle(), path.c_str())));
        }
        close(fds[1]);
        Bytes received;
        uint8_t chunk[256];
        ssize_t n;
        while ((n = read(fds[0], chunk, sizeof chunk)) > 0)
            received.insert(received.end(), chunk, chunk + n);
        close(fds[0]);
        int wait_status = 0;
        waitpid(child, &wait_status, 0);
        ASSERT_TRUE(WIFEXITED(wait_status));
        EXPECT_EQ(WEXITSTATUS(wait_status), int(ORV_ERROR_BAD_PARAM));
        Bytes expected = expected_tiff(c.format == ORV_FORMAT_BGR24, 4, 2, 12,
                                       image.data());
        expected.resize(c.bytes_before_first_offset);
        EXPECT_EQ(received, expected) << std::hex << c.format;
    }
}

struct TiffFault {
    const char *what;
    const char *path;
    void (*spoil)(TestImage &);
    ORV_STATUS status;
};

TEST(TiffFile, Refusals) {
    auto keep = [](TestImage &) {};
    const TiffFault faults[] = {
        {"invalid buffer", nullptr,
         [](TestImage &i) { i.set_pointer(OFS_BUFFER_VALID, 0); },
         ORV_ERROR_BAD_PARAM},
        {"format zero", nullptr, [](TestImage &i) { i.set(OFS_FORMAT, 0); },
         ORV_ERROR_BAD_PARAM},
        {"path longer than the message", kLongMissingPath.c_str(), keep,
         ORV_ERROR_OPEN_FAILED},
    };
    for (const auto &f : faults) {
        TestImage image(ORV_FORMAT_Y8, 4, 2, 4);
        f.spoil(image);
        const std::string path = f.path ? f.path : scratch_path("refused.tif");
        EXPECT_EQ(OVC_FileWriteTiff(image.handle(), path.c_str()), f.status)
            << f.what;
        if (!f.path) {
            EXPECT_FALSE(file_exists(path)) << f.what;
        }
    }
}

// A file the device stops taking part-way: /dev/full takes nothing, a
// file-size limit (set in a child process, SIGXFSZ ignored) takes the
// first `limit` bytes. Pixel bytes go out as putc puts them: a byte that
// finds the stream's buffer (4096 bytes here) full flushes it, or is
// dropped with it when the device refuses; the close reports the bytes
// left in the buffer that it cannot write.
constexpr long kFullDevice = -1;

struct DeviceStop {
    const char *what;
    uint32_t format, width, height, stride;
    long limit; // kFullDevice, or the bytes the file may hold
    ORV_STATUS status;
};

TEST(TiffFile, FilesCutShortByTheDeviceKeepTheirPrefixAndStatus) {
    const DeviceStop stops[] = {
        {"Y8, all in the buffer", ORV_FORMAT_Y8, 4, 2, 4, kFullDevice,
         ORV_ERROR_CLOSE_FAILED},
        {"BGR24, all in the buffer", ORV_FORMAT_BGR24, 5, 3, 15, kFullDevice,
         ORV_ERROR_CLOSE_FAILED},
        {"Y8 1920 x 1080", ORV_FORMAT_Y8, 1920, 1080, 1920, kFullDevice,
         ORV_ERROR_CLOSE_FAILED},
        {"BGR24 1920 x 540", ORV_FORMAT_BGR24, 1920, 540, 5760, kFullDevice,
         ORV_ERROR_CLOSE_FAILED},
        {"Y8, a line of four buffers", ORV_FORMAT_Y8, 16384, 2, 16384,
         kFullDevice, ORV_ERROR_CLOSE_FAILED},
        {"Y8, the last byte dropped with the buffer", ORV_FORMAT_Y8, 4097, 1,
         4097, kFullDevice, ORV_OK},
        {"Y8 stopped in the pixels", ORV_FORMAT_Y8, 1920, 1080, 1920, 100000,
         ORV_ERROR_CLOSE_FAILED},
        {"BGR24 stopped in the pixels", ORV_FORMAT_BGR24, 640, 480, 1920,
         100000, ORV_ERROR_CLOSE_FAILED},
    };
    for (const auto &s : stops) {
        TestImage image(s.format, s.width, s.height, s.stride);
        const Bytes pixels = orv_test::random_bytes(image.size(), s.width);
        std::copy(pixels.begin(), pixels.end(), image.data());
        const std::string path =
            s.limit == kFullDevice ? "/dev/full" : scratch_path("cut.tif");
        const pid_t child = fork();
        if (child == 0) {
            if (s.limit != kFullDevice) {
                std::signal(SIGXFSZ, SIG_IGN);
                const rlimit limit{rlim_t(s.limit), rlim_t(s.limit)};
                setrlimit(RLIMIT_FSIZE, &limit);
            }
            _exit(int(OVC_FileWriteTiff(image.handle(), path.c_str())));
        }
        int wait_status = 0;
        waitpid(child, &wait_status, 0);
        ASSERT_TRUE(WIFEXITED(wait_status)) << s.what;
        EXPECT_EQ(WEXITSTATUS(wait_status), int(s.status)) << s.what;
        if (s.limit == kFullDevice) continue;
        Bytes expected = expected_tiff(s.format == ORV_FORMAT_BGR24, s.width,
                                       s.height, s.stride, pixels.data());
        expected.resize(size_t(s.limit));
        EXPECT_EQ(read_file(path), expected) << s.what;
    }
}

} // namespace
