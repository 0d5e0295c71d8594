// File output: the byte-order writers, raw dumps, TIFF files (two golden
// files byte for byte, larger ones read back by libtiff, the fragments left
// in an open stream), and both file writers' refusals and faults: paths
// that cannot be opened, failing devices and pipes, file-size limits.
#include "support/scratch.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <tuple>

#ifdef ORV_HAVE_LIBTIFF
#include <tiffio.h>
#endif

namespace {

using orv_test::TestImage;
using orv_test::read_file;
using orv_test::scratch_path;
using Bytes = std::vector<uint8_t>;

// The exit code of `child` run in a forked process, which leaves by _exit
// (flushing nothing) unless it exits itself; -1 if it did not exit.
int exit_code_of(const std::function<int()> &child,
                 const std::function<void()> &parent = [] {}) {
    const pid_t pid = fork();
    if (pid == 0) _exit(child());
    parent();
    int wait_status = 0;
    waitpid(pid, &wait_status, 0);
    return WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : -1;
}

// Each writer returns its last putc's result: the last byte, or EOF when
// the stream takes no bytes.
TEST(ByteOrderWriters, PutTheirBytesInOrderAndReturnTheLast) {
    struct Case {
        const char *name;
        int (*writer)(FILE *, uint32_t);
        uint32_t value;
        Bytes expected;
    };
    const Case cases[] = {
        {"ui32m", OVC_fput_ui32m, 0x11223344u, {0x11, 0x22, 0x33, 0x44}},
        {"ui32i", OVC_fput_ui32i, 0x11223344u, {0x44, 0x33, 0x22, 0x11}},
        {"ui16m", OVC_fput_ui16m, 0x12345u, {0x23, 0x45}},
        {"ui16i", OVC_fput_ui16i, 0x12345u, {0x45, 0x23}},
        {"ui8", OVC_fput_ui8, 0x1FFu, {0xFF}},
        {"ui32m high", OVC_fput_ui32m, 0xFF0000FEu, {0xFF, 0x00, 0x00, 0xFE}},
    };
    FILE *read_only = std::fopen("/dev/null", "rb");
    ASSERT_NE(read_only, nullptr);
    for (const auto &c : cases) {
        const std::string path = scratch_path("bytes.bin");
        FILE *f = std::fopen(path.c_str(), "wb");
        ASSERT_NE(f, nullptr);
        EXPECT_EQ(c.writer(f, c.value), c.expected.back()) << c.name;
        std::fclose(f);
        EXPECT_EQ(read_file(path), c.expected) << c.name;
        EXPECT_EQ(c.writer(read_only, c.value), EOF) << c.name;
    }
    std::fclose(read_only);
}

// A raw dump is height x stride bytes, padding included, counted in 32
// bits: 0x10001 lines of 0x10000 bytes wrap to 0x10000 bytes.
TEST(RawFile, HoldsHeightTimesStrideBytesAWrapping32BitProduct) {
    struct Case {
        uint32_t width, height, stride;
    };
    const Case cases[] = {{4, 3, 4}, {5, 2, 8},  {3, 0, 8}, {0, 3, 0},
                          {1, 1, 1}, {7, 5, 13}, {16, 0x10001u, 0x10000u}};
    for (const auto &c : cases) {
        const uint32_t count = c.stride * c.height;
        // At least one byte, so an empty image still has an address.
        TestImage image(ORV_FORMAT_Y8, c.width, c.height, c.stride, std::max(count, 1u));
        const Bytes pixels = image.randomise(c.stride);
        const std::string path = scratch_path("raw.bin");
        EXPECT_EQ(OVC_FileWrite(image.handle(), path.c_str(), OVC_FILE_RAW), ORV_OK);
        EXPECT_EQ(read_file(path), Bytes(pixels.begin(), pixels.begin() + count))
            << c.width << "x" << c.height << " stride " << c.stride;
    }
}

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

Bytes golden(uint32_t format) {
    const bool colour = format == ORV_FORMAT_BGR24 || format == ORV_FORMAT_RGB24;
    return colour ? Bytes(kColourFile.begin(), kColourFile.end())
                  : Bytes(kGreyFile.begin(), kGreyFile.end());
}

// The 5 x 3 image of the golden files, in `format`.
struct SmallImage : TestImage {
    explicit SmallImage(uint32_t format, uint32_t stride = 16)
        : TestImage(format, 5, 3, stride, 3 * stride, 0xEE) {
        for (uint32_t y = 0; y < 3; ++y)
            for (uint32_t x = 0; x < std::min(stride, 15u); ++x)
                (*this)[y * stride + x] = uint8_t(16 * y + x);
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

// Larger files, many stream buffers long, padded lines: the strip holds
// each line's first W bytes. Sizes of 2^16 and more go into the 16-bit
// width and height cut to their low bits; libtiff cannot read those.
TEST(TiffFile, LargeFilesReadBackWithLibtiff) {
    struct Case {
        uint32_t format, width, height, stride;
    };
    const Case cases[] = {
        {ORV_FORMAT_Y8, 1920, 1080, 1920}, {ORV_FORMAT_Y8, 641, 9, 700},
        {ORV_FORMAT_BGR24, 1920, 540, 5760}, {ORV_FORMAT_Y8, 3, 0, 4},
        {ORV_FORMAT_Y8, 70000, 1, 70000}, {ORV_FORMAT_BGR24, 65537, 2, 196611},
    };
    for (const auto &c : cases) {
        TestImage image(c.format, c.width, c.height, c.stride);
        const Bytes pixels = image.randomise(c.width);
        const std::string path = scratch_path("large.tif");
        ASSERT_EQ(OVC_FileWriteTiff(image.handle(), path.c_str()), ORV_OK);
        const bool colour = c.format == ORV_FORMAT_BGR24;
        Bytes lines;
        for (uint32_t y = 0; y < c.height; ++y) {
            const auto line = pixels.begin() + long(y) * c.stride;
            lines.insert(lines.end(), line, line + c.width);
        }
        const Bytes file = read_file(path);
        const size_t header = colour ? 204 : 186;
        ASSERT_EQ(file.size(), header + lines.size()) << c.width;
        EXPECT_EQ(Bytes(file.begin() + long(header), file.end()), lines) << c.width;
        EXPECT_EQ(uint32_t(file[30] << 8 | file[31]), c.width & 0xFFFF) << c.width;
        EXPECT_EQ(uint32_t(file[42] << 8 | file[43]), c.height & 0xFFFF) << c.width;
        if (c.width > 0xFFFF || c.height == 0) continue;
#ifdef ORV_HAVE_LIBTIFF
        TIFFSetWarningHandler(nullptr); // quiet about BGR24's short strip
        TIFF *tiff = TIFFOpen(path.c_str(), "rc"); // c: RowsPerStrip as written
        ASSERT_NE(tiff, nullptr) << c.width;
        uint32_t width = 0, height = 0, rows_per_strip = 0;
        uint16_t bits = 0, samples = 0, photometric = 0;
        TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
        TIFFGetField(tiff, TIFFTAG_ROWSPERSTRIP, &rows_per_strip);
        TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
        TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
        const uint16_t kind = colour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
        EXPECT_EQ(std::make_tuple(width, height, rows_per_strip, bits, samples, photometric),
                  std::make_tuple(c.width, c.height, c.height, uint16_t(8),
                                  uint16_t(colour ? 3 : 1), kind));
        // The strip's first W x H bytes, all that BGR24's holds of the 3WH it says.
        Bytes strip(lines.size());
        const tmsize_t got = TIFFReadRawStrip(tiff, 0, strip.data(), tmsize_t(strip.size()));
        EXPECT_EQ(got, tmsize_t(lines.size())) << c.width;
        EXPECT_EQ(strip, lines) << c.width;
        TIFFClose(tiff);
#endif // without libtiff for this target, the bytes above are all that is checked
    }
}

// Formats the writer does not finish leave the stream open: the file is
// empty until the process exits (else the child exits with 99), then holds
// the fragment. RGB24 ends after BitsPerSample's tag and type, 14 entries
// declared; Y16 after its StripByteCounts value (5 x 3), 13 declared,
// BitsPerSample 16 and StripOffsets never patched.
TEST(TiffFile, UnfinishedFormatsLeaveTheirFragmentInAnOpenStream) {
    struct Fragment {
        uint32_t format;
        ORV_STATUS status;
        size_t size; // the file ends here
    };
    const Fragment fragments[] = {
        {ORV_FORMAT_RGB24, ORV_ERROR_BAD_PARAM, 50},
        {ORV_FORMAT_Y16, ORV_ERROR_BAD_PARAM, 130},
        {ORV_FORMAT_BGRX32, ORV_ERROR_BAD_FORMAT, 8},
        {0x00022601u, ORV_ERROR_BAD_FORMAT, 8}, // Y8's low byte only
    };
    for (const auto &f : fragments) {
        SmallImage image(f.format);
        const std::string path = scratch_path("fragment.tif");
        EXPECT_EQ(exit_code_of([&]() -> int {
                      const ORV_STATUS status = OVC_FileWriteTiff(image.handle(), path.c_str());
                      std::exit(read_file(path).empty() ? int(status) : 99);
                  }),
                  int(f.status))
            << std::hex << f.format;
        Bytes expected = golden(f.format);
        expected.resize(f.size);
        if (f.format == ORV_FORMAT_Y16) {
            expected[55] = 16;
            std::fill(expected.begin() + 90, expected.begin() + 94, 0);
        }
        EXPECT_EQ(read_file(path), expected) << std::hex << f.format;
    }
}

// The call of a row: OVC_FileWriteTiff, or OVC_FileWrite of a file type.
constexpr uint32_t tiff = ~0u, raw = OVC_FILE_RAW;

enum Target {
    null_path,
    missing_dir, // a path longer than the open-failure message, which cuts it short
    full_device, // /dev/full: every write fails with ENOSPC
    fifo,        // a FIFO whose reader takes 4 KiB and closes
    file,        // a fresh file in the scratch directory
};

enum Spoil { keep, invalid, null_address, no_format };

// Y8 lines of 512 bytes: one fits the stream's buffer (4096 bytes) and goes
// out at the close; 512 go out at once, in the raw writer's fwrite. TIFF
// bytes go out as putc puts them: a byte that finds the buffer full flushes
// it, or is dropped with it when the device refuses.
constexpr uint32_t kLine = 512, kShort = 1, kLong = 512;
constexpr uint32_t Y8 = ORV_FORMAT_Y8, BGR24 = ORV_FORMAT_BGR24;
constexpr rlim_t kNoLimit = RLIM_INFINITY;
constexpr long kNoFile = -1;
constexpr ORV_STATUS kBad = ORV_ERROR_BAD_PARAM, kOpenFailed = ORV_ERROR_OPEN_FAILED;
constexpr ORV_STATUS kWriteFailed = ORV_ERROR_WRITE_FAILED, kCloseFailed = ORV_ERROR_CLOSE_FAILED;

std::string path_of(Target target) {
    switch (target) {
    case missing_dir: return "/nonexistent-orvane-dir/" + std::string(600, 'p') + ".out";
    case full_device: return "/dev/full";
    case fifo: {
        const std::string path = scratch_path("fault.fifo");
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        return path;
    }
    default: return scratch_path("fault.out");
    }
}

int open_descriptors() {
    DIR *dir = opendir("/proc/self/fd");
    int count = 0;
    while (readdir(dir) != nullptr) ++count;
    closedir(dir);
    return count;
}

// Each call runs in a child that ignores SIGPIPE and SIGXFSZ, so a failing
// write comes back as an error; its exit code carries the status (below
// 32) and the descriptors the call left open (times 32): none, except the
// stream a TIFF writer keeps when it fails after opening its file. A file
// cut short keeps the start of the whole file; a refusal makes none.
TEST(FileWriters, RefusalsAndFaultsGiveTheirStatusAndLeaveOnlyAFailedTiffStreamOpen) {
    struct Fault {
        uint32_t call;
        Target target;
        uint32_t format, width, height; // lines of width pixels, no padding
        rlim_t size_limit; // RLIMIT_FSIZE of the child
        Spoil spoil;
        ORV_STATUS status;
        int left_open;  // descriptors the call leaves open
        long file_size; // bytes in the file afterwards, or kNoFile
    };
    const Fault faults[] = {
        // Refusals (no file made), then paths that cannot be opened.
        {0, file, Y8, 4, 2, kNoLimit, keep, ORV_ERROR_NOT_SUPPORTED, 0, kNoFile},
        {4, file, Y8, 4, 2, kNoLimit, keep, ORV_ERROR_NOT_SUPPORTED, 0, kNoFile},
        {raw, file, Y8, 4, 2, kNoLimit, null_address, kBad, 0, kNoFile},
        {tiff, file, Y8, 4, 2, kNoLimit, invalid, kBad, 0, kNoFile},
        {tiff, file, Y8, 4, 2, kNoLimit, no_format, kBad, 0, kNoFile},
        {raw, null_path, Y8, kLine, kShort, kNoLimit, keep, kOpenFailed, 0, kNoFile},
        {tiff, missing_dir, Y8, kLine, kShort, kNoLimit, keep, kOpenFailed, 0, kNoFile},
        // Raw: a long write fails in the fwrite, a buffered one at the close.
        {raw, file, Y8, kLine, kLong, 1000, keep, kWriteFailed, 0, 1000},
        {raw, file, Y8, kLine, kShort, 100, keep, kCloseFailed, 0, 100},
        // A FIFO cannot tell its position: the first offset stops the file.
        {tiff, fifo, Y8, kLine, kShort, kNoLimit, keep, kBad, 1, kNoFile},
        {tiff, file, Y8, kLine, kShort, 100, keep, kCloseFailed, 0, 100},
        {tiff, file, Y8, 1920, 1080, 100000, keep, kCloseFailed, 0, 100000},
        {tiff, file, BGR24, 640, 480, 100000, keep, kCloseFailed, 0, 100000},
        {tiff, full_device, BGR24, 1920, 540, kNoLimit, keep, kCloseFailed, 0, kNoFile},
        {tiff, full_device, Y8, 16384, 2, kNoLimit, keep, kCloseFailed, 0, kNoFile},
        // The last byte finds the buffer full and is dropped with it: the
        // close has nothing left to write.
        {tiff, full_device, Y8, 4097, 1, kNoLimit, keep, ORV_OK, 0, kNoFile},
    };
    for (const auto &f : faults) {
        SCOPED_TRACE(testing::Message() << "row " << (&f - faults));
        TestImage image(f.format, f.width, f.height, f.width * (f.format == BGR24 ? 3 : 1));
        image.randomise(f.width);
        if (f.spoil == invalid) image.set_pointer(OFS_BUFFER_VALID, 0);
        if (f.spoil == null_address) image.set_pointer(OFS_START_ADDR, 0);
        if (f.spoil == no_format) image.set(OFS_FORMAT, 0);
        const auto write = [&](const char *path) {
            return f.call == tiff ? OVC_FileWriteTiff(image.handle(), path)
                                  : OVC_FileWrite(image.handle(), path, f.call);
        };
        const std::string path = path_of(f.target);
        const int code = exit_code_of(
            [&] {
                signal(SIGPIPE, SIG_IGN);
                signal(SIGXFSZ, SIG_IGN);
                const rlimit limit{f.size_limit, f.size_limit};
                if (f.size_limit != kNoLimit && setrlimit(RLIMIT_FSIZE, &limit) != 0)
                    return 255;
                const int before = open_descriptors();
                const ORV_STATUS status = write(f.target == null_path ? nullptr : path.c_str());
                return int(status) + 32 * (open_descriptors() - before);
            },
            [&] {
                if (f.target != fifo) return;
                const int fd = open(path.c_str(), O_RDONLY);
                char chunk[4096];
                EXPECT_GE(read(fd, chunk, sizeof chunk), 0);
                close(fd);
            });
        ASSERT_NE(code, -1);
        EXPECT_EQ(code % 32, int(f.status));
        EXPECT_EQ(code / 32, f.left_open);
        if (f.target != file && f.target != null_path) continue;
        EXPECT_EQ(::access(path.c_str(), F_OK) == 0, f.file_size != kNoFile);
        // A file cut short past a TIFF header (204 bytes at most) is the start
        // of the whole file; one cut inside it has offsets patched in there.
        if (f.file_size > 0 && (f.call == raw || f.file_size > 204)) {
            const std::string whole = scratch_path("whole.out");
            ASSERT_EQ(write(whole.c_str()), ORV_OK);
            Bytes start = read_file(whole);
            start.resize(size_t(f.file_size));
            EXPECT_EQ(read_file(path), start);
        } else if (f.file_size != kNoFile) {
            EXPECT_EQ(long(read_file(path).size()), f.file_size);
        }
    }
}

} // namespace
