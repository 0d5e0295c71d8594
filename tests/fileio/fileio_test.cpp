// File output: the byte-order writers, raw dumps with their fault paths,
// and TIFF files: two golden files byte for byte, larger ones read back
// by libtiff, and the fragments that the writer leaves open (read back
// after the writing process has exited). Files cut short by a device are
// in fault_test.cpp.
#include "fileio/scratch.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#ifdef ORV_HAVE_LIBTIFF
#include <tiffio.h>
#endif

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

// Two finished files as the writer lays them out, big-endian, one strip:
// a 5 x 3 Y8 image at stride 10 (13 entries, the strip at 186) and a
// 5 x 3 BGR24 image at stride 16 (14 entries, BitsPerSample's array at
// 182, the strip at 204). Pixel byte x of line y is 16y + x, padding 0xEE.
// BGR24 lines go out W bytes long although StripByteCounts says 3W.
const std::string kGreyFile(
    "\x4d\x4d\x00\x2a\x00\x00\x00\x08\x00\x0d\x00\xfe\x00\x04\x00\x00"
    "\x00\x01\x00\x00\x00\x00\x01\x00\x00\x03\x00\x00\x00\x01\x00\x05"
    "\x00\x00\x01\x01\x00\x03\x00\x00\x00\x01\x00\x03\x00\x00\x01\x02"
    "\x00\x03\x00\x00\x00\x01\x00\x08\x00\x00\x01\x03\x00\x03\x00\x00"
    "\x00\x01\x00\x01\x00\x00\x01\x06\x00\x03\x00\x00\x00\x01\x00\x01"
    "\x00\x00\x01\x11\x00\x04\x00\x00\x00\x01\x00\x00\x00\xba\x01\x15"
    "\x00\x03\x00\x00\x00\x01\x00\x01\x00\x00\x01\x16\x00\x04\x00\x00"
    "\x00\x01\x00\x00\x00\x03\x01\x17\x00\x04\x00\x00\x00\x01\x00\x00"
    "\x00\x0f\x01\x1a\x00\x05\x00\x00\x00\x01\x00\x00\x00\xaa\x01\x1b"
    "\x00\x05\x00\x00\x00\x01\x00\x00\x00\xb2\x01\x28\x00\x03\x00\x00"
    "\x00\x01\x00\x01\x00\x00\x00\x00\x00\x00\x00\x00\x01\x2c\x00\x00"
    "\x00\x01\x00\x00\x01\x2c\x00\x00\x00\x01\x00\x01\x02\x03\x04\x10"
    "\x11\x12\x13\x14\x20\x21\x22\x23\x24", 201);
const std::string kColourFile(
    "\x4d\x4d\x00\x2a\x00\x00\x00\x08\x00\x0e\x00\xfe\x00\x04\x00\x00"
    "\x00\x01\x00\x00\x00\x00\x01\x00\x00\x03\x00\x00\x00\x01\x00\x05"
    "\x00\x00\x01\x01\x00\x03\x00\x00\x00\x01\x00\x03\x00\x00\x01\x02"
    "\x00\x03\x00\x00\x00\x03\x00\x00\x00\xb6\x01\x03\x00\x03\x00\x00"
    "\x00\x01\x00\x01\x00\x00\x01\x06\x00\x03\x00\x00\x00\x01\x00\x02"
    "\x00\x00\x01\x11\x00\x04\x00\x00\x00\x01\x00\x00\x00\xcc\x01\x15"
    "\x00\x03\x00\x00\x00\x01\x00\x03\x00\x00\x01\x16\x00\x04\x00\x00"
    "\x00\x01\x00\x00\x00\x03\x01\x17\x00\x04\x00\x00\x00\x01\x00\x00"
    "\x00\x2d\x01\x1a\x00\x05\x00\x00\x00\x01\x00\x00\x00\xbc\x01\x1b"
    "\x00\x05\x00\x00\x00\x01\x00\x00\x00\xc4\x01\x1c\x00\x03\x00\x00"
    "\x00\x01\x00\x01\x00\x00\x01\x28\x00\x03\x00\x00\x00\x01\x00\x01"
    "\x00\x00\x00\x00\x00\x00\x00\x08\x00\x08\x00\x08\x00\x00\x01\x2c"
    "\x00\x00\x00\x01\x00\x00\x01\x2c\x00\x00\x00\x01\x00\x01\x02\x03"
    "\x04\x10\x11\x12\x13\x14\x20\x21\x22\x23\x24", 219);

const Bytes &golden(uint32_t format) {
    static const Bytes grey(kGreyFile.begin(), kGreyFile.end());
    static const Bytes colour(kColourFile.begin(), kColourFile.end());
    return format == ORV_FORMAT_BGR24 || format == ORV_FORMAT_RGB24 ? colour : grey;
}

// The 5 x 3 image of the golden files, in `format`.
struct SmallImage : TestImage {
    explicit SmallImage(uint32_t format, uint32_t stride = 16)
        : TestImage(format, 5, 3, stride, 3 * stride, 0xEE) {
        for (uint32_t y = 0; y < 3; ++y)
            for (uint32_t x = 0; x < std::min(stride, 15u); ++x) (*this)[y * stride + x] = uint8_t(16 * y + x);
    }
};

TEST(TiffFile, SmallFilesMatchTheGoldenBytes) {
    for (const uint32_t format : {ORV_FORMAT_Y8, ORV_FORMAT_BGR24}) {
        SmallImage image(format, format == ORV_FORMAT_Y8 ? 10 : 16);
        const std::string path = scratch_path("golden.tif");
        EXPECT_EQ(OVC_FileWriteTiff(image.handle(), path.c_str()), ORV_OK);
        EXPECT_EQ(read_file(path), golden(format)) << std::hex << format;
        // OVC_FileWrite of type 3 writes the same file.
        EXPECT_EQ(OVC_FileWrite(image.handle(), path.c_str(), OVC_FILE_TIFF), ORV_OK);
        EXPECT_EQ(read_file(path), golden(format)) << std::hex << format;
    }
}

uint32_t big_endian_u16(const Bytes &file, size_t offset) {
    return uint32_t(file[offset]) << 8 | file[offset + 1];
}

#ifdef ORV_HAVE_LIBTIFF
// What libtiff reads back: the tags that describe the image, and the
// strip.
struct ReadBack {
    uint32_t width = 0, height = 0, rows_per_strip = 0;
    uint16_t bits = 0, samples = 0, photometric = 0;
    Bytes strip;
};

ReadBack read_back(const std::string &path) {
    // BGR24 strips are shorter than their StripByteCounts, which libtiff
    // would report on stderr.
    TIFFSetWarningHandler(nullptr);
    TIFFSetErrorHandler(nullptr);
    ReadBack r;
    TIFF *tiff = TIFFOpen(path.c_str(), "rc"); // c: the strip as written, not chopped
    if (!tiff) return r;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &r.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &r.height);
    TIFFGetField(tiff, TIFFTAG_ROWSPERSTRIP, &r.rows_per_strip);
    TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &r.bits);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &r.samples);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &r.photometric);
    r.strip.resize(size_t(TIFFStripSize(tiff)));
    r.strip.resize(size_t(std::max<tmsize_t>(0, TIFFReadRawStrip(tiff, 0, r.strip.data(), tmsize_t(r.strip.size())))));
    TIFFClose(tiff);
    return r;
}
#endif

struct TiffCase {
    uint32_t format, width, height, stride;
};

// Larger files, many stream buffers long, lines back to back and padded:
// libtiff reads them back, and the strip holds each line's first W bytes.
// Sizes of 2^16 and more go into the 16-bit width and height fields cut
// to their low bits, which libtiff cannot read, so only those are checked.
TEST(TiffFile, LargeFilesReadBackWithLibtiff) {
    const TiffCase cases[] = {
        {ORV_FORMAT_Y8, 1920, 1080, 1920}, {ORV_FORMAT_Y8, 1000, 7, 1000},
        {ORV_FORMAT_Y8, 641, 9, 700},      {ORV_FORMAT_BGR24, 1920, 540, 5760},
        {ORV_FORMAT_Y8, 3, 0, 4},          {ORV_FORMAT_Y8, 70000, 1, 70000},
        {ORV_FORMAT_BGR24, 65537, 2, 196611},
    };
    for (const auto &c : cases) {
        TestImage image(c.format, c.width, c.height, c.stride);
        const Bytes pixels = orv_test::random_bytes(image.size(), c.width);
        std::copy(pixels.begin(), pixels.end(), image.data());
        const std::string path = scratch_path("large.tif");
        ASSERT_EQ(OVC_FileWriteTiff(image.handle(), path.c_str()), ORV_OK);
        const bool colour = c.format == ORV_FORMAT_BGR24;
        const size_t header = colour ? 204 : 186;
        Bytes lines;
        for (uint32_t y = 0; y < c.height; ++y)
            lines.insert(lines.end(), pixels.begin() + size_t(y) * c.stride,
                         pixels.begin() + size_t(y) * c.stride + c.width);
        const Bytes file = read_file(path);
        ASSERT_EQ(file.size(), header + lines.size()) << c.width;
        EXPECT_EQ(Bytes(file.begin(), file.begin() + 8), Bytes(golden(c.format).begin(), golden(c.format).begin() + 8));
        EXPECT_EQ(Bytes(file.begin() + long(header), file.end()), lines) << c.width;
        EXPECT_EQ(big_endian_u16(file, 30), c.width & 0xFFFF) << c.width;
        EXPECT_EQ(big_endian_u16(file, 42), c.height & 0xFFFF) << c.width;
        if (c.width > 0xFFFF || c.height == 0) continue;
#ifdef ORV_HAVE_LIBTIFF
        const ReadBack r = read_back(path);
        EXPECT_EQ(r.width, c.width);
        EXPECT_EQ(r.height, c.height);
        EXPECT_EQ(r.rows_per_strip, c.height);
        EXPECT_EQ(r.bits, 8);
        EXPECT_EQ(r.samples, colour ? 3 : 1);
        EXPECT_EQ(r.photometric, colour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
        if (!colour) {
            EXPECT_EQ(r.strip, lines) << c.width;
        }
#else
        GTEST_SKIP() << "libtiff for this target is not installed: no read back";
#endif
    }
}

// Runs `call` in a child process after `prepare` and returns the call's
// status, the child's exit code. The child leaves by exit(), so a stream
// a failing writer leaves open is flushed by the exit and not before; 99
// if the file at `path` had any byte before that.
int in_child(const std::function<void()> &prepare, const std::function<ORV_STATUS()> &call,
             const std::string &path = "") {
    const pid_t child = fork();
    if (child == 0) {
        prepare();
        const ORV_STATUS status = call();
        std::exit(!path.empty() && !read_file(path).empty() ? 99 : int(status));
    }
    int wait_status = 0;
    waitpid(child, &wait_status, 0);
    return WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : -1;
}

struct Fragment {
    uint32_t format;
    ORV_STATUS status;
    size_t size; // the file ends here
};

TEST(TiffFile, UnfinishedFormatsLeaveTheirFragmentInAnOpenStream) {
    // RGB24 ends after BitsPerSample's tag and type, with 14 entries
    // declared; Y16 after its StripByteCounts value (5 x 3), with 13
    // declared, BitsPerSample 16 and StripOffsets never patched.
    const Fragment fragments[] = {
        {ORV_FORMAT_RGB24, ORV_ERROR_BAD_PARAM, 50},
        {ORV_FORMAT_Y16, ORV_ERROR_BAD_PARAM, 130},
        {ORV_FORMAT_BGRX32, ORV_ERROR_BAD_FORMAT, 8},
        {0x00022601u, ORV_ERROR_BAD_FORMAT, 8}, // Y8's low byte only
    };
    for (const auto &f : fragments) {
        SmallImage image(f.format);
        const std::string path = scratch_path("fragment.tif");
        EXPECT_EQ(in_child([] {}, [&] { return OVC_FileWriteTiff(image.handle(), path.c_str()); }, path),
                  int(f.status))
            << std::hex << f.format;
        Bytes expected(golden(f.format).begin(), golden(f.format).begin() + long(f.size));
        if (f.format == ORV_FORMAT_Y16) {
            expected[55] = 16;
            std::fill(expected.begin() + 90, expected.begin() + 94, 0);
        }
        EXPECT_EQ(read_file(path), expected) << std::hex << f.format;
    }
}

TEST(TiffFile, Refusals) {
    struct Refusal {
        const char *what;
        const char *path; // null: a fresh scratch file
        void (*spoil)(TestImage &);
        ORV_STATUS status;
    };
    auto keep = [](TestImage &) {};
    const Refusal refusals[] = {
        {"invalid buffer", nullptr, [](TestImage &i) { i.set_pointer(OFS_BUFFER_VALID, 0); }, ORV_ERROR_BAD_PARAM},
        {"format zero", nullptr, [](TestImage &i) { i.set(OFS_FORMAT, 0); }, ORV_ERROR_BAD_PARAM},
        {"path longer than the message", kLongMissingPath.c_str(), keep, ORV_ERROR_OPEN_FAILED},
    };
    for (const auto &r : refusals) {
        TestImage image(ORV_FORMAT_Y8, 4, 2, 4);
        r.spoil(image);
        const std::string path = r.path ? r.path : scratch_path("refused.tif");
        EXPECT_EQ(OVC_FileWriteTiff(image.handle(), path.c_str()), r.status) << r.what;
        EXPECT_FALSE(file_exists(path)) << r.what;
    }
}

} // namespace
