// The file writers against paths that cannot be opened, devices and pipes
// that fail mid-way and a file-size limit. Each call runs in a child
// process that ignores SIGPIPE and SIGXFSZ, so a failing write comes back
// as an error; the child reports the call's status and how many
// descriptors the call left open: none, except the one stream a TIFF
// writer keeps when it fails after opening its file. A file cut short
// keeps the start of the whole file.
#include "fileio/scratch.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace {

using orv_test::file_exists;
using orv_test::read_file;
using orv_test::scratch_path;
using orv_test::TestImage;

enum class Writer { raw, tiff };

// Where a call writes.
enum class Target {
    none,              // a null path
    missing_directory, // a file in a directory that does not exist
    directory,         // an existing directory
    full_device,       // /dev/full: every write fails with ENOSPC
    fifo,              // a FIFO whose reader takes 4 KiB and closes
    file,              // a fresh file in the scratch directory
};

// Y8 lines of 512 bytes. One line fits the stream's buffer and goes out
// at the close; 512 lines go out at once, in the raw writer's fwrite.
// TIFF pixel bytes go out as putc puts them: a byte that finds the
// stream's buffer (4096 bytes here) full flushes it, or is dropped with it
// when the device refuses; the close reports the bytes left in the buffer
// that it cannot write.
constexpr uint32_t kLine = 512;
constexpr uint32_t kShort = 1, kLong = 512;
constexpr rlim_t kNoLimit = RLIM_INFINITY;
constexpr long kNoFile = -1;

struct Fault {
    const char *what;
    Writer writer;
    Target target;
    uint32_t format, width, height; // lines of width pixels, no padding
    rlim_t size_limit; // RLIMIT_FSIZE of the child
    ORV_STATUS status;
    int left_open;  // descriptors the call leaves open
    long file_size; // bytes in the file afterwards, or kNoFile
};

// Bytes the file holds are the start of the whole file when the stop
// falls past a TIFF header (204 bytes at most); one inside the header
// leaves the offsets patched in at the stream's position there.
constexpr long kTiffHeader = 204;

std::string path_of(Target target) {
    switch (target) {
    case Target::missing_directory: return "/nonexistent-orvane-dir/out";
    case Target::directory: return ORV_SCRATCH_DIR;
    case Target::full_device: return "/dev/full";
    case Target::fifo: {
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

// The call in a child; its exit code carries the status (below 32) and
// the descriptors left open (times 32).
int call_in_child(const Fault &f, TestImage &image, const char *path) {
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{f.size_limit, f.size_limit};
    if (f.size_limit != kNoLimit && setrlimit(RLIMIT_FSIZE, &limit) != 0)
        return 255;
    const int before = open_descriptors();
    const ORV_STATUS status =
        f.writer == Writer::raw
            ? OVC_FileWrite(image.handle(), path, OVC_FILE_RAW)
            : OVC_FileWriteTiff(image.handle(), path);
    return int(status) + 32 * (open_descriptors() - before);
}

// Takes one read of up to 4 KiB from the FIFO, then closes it while the writer
// still has bytes to send.
void read_a_little(const std::string &path) {
    const int fd = open(path.c_str(), O_RDONLY);
    ASSERT_GE(fd, 0);
    char chunk[4096];
    EXPECT_GE(read(fd, chunk, sizeof chunk), 0);
    close(fd);
}

TEST(FileWriterFaults, GiveTheirStatusAndLeaveOnlyAFailedTiffStreamOpen) {
    const Fault faults[] = {
        {"raw, null path", Writer::raw, Target::none, ORV_FORMAT_Y8, kLine, kShort,
         kNoLimit, ORV_ERROR_OPEN_FAILED, 0, kNoFile},
        {"tiff, null path", Writer::tiff, Target::none, ORV_FORMAT_Y8, kLine, kShort,
         kNoLimit, ORV_ERROR_OPEN_FAILED, 0, kNoFile},
        {"raw, missing directory", Writer::raw, Target::missing_directory,
         ORV_FORMAT_Y8, kLine, kShort, kNoLimit, ORV_ERROR_OPEN_FAILED, 0, kNoFile},
        {"tiff, missing directory", Writer::tiff, Target::missing_directory,
         ORV_FORMAT_Y8, kLine, kShort, kNoLimit, ORV_ERROR_OPEN_FAILED, 0, kNoFile},
        {"raw, a directory", Writer::raw, Target::directory, ORV_FORMAT_Y8, kLine, kShort,
         kNoLimit, ORV_ERROR_OPEN_FAILED, 0, kNoFile},
        {"tiff, a directory", Writer::tiff, Target::directory, ORV_FORMAT_Y8, kLine,
         kShort, kNoLimit, ORV_ERROR_OPEN_FAILED, 0, kNoFile},
        {"raw, full device, long write", Writer::raw, Target::full_device,
         ORV_FORMAT_Y8, kLine, kLong, kNoLimit, ORV_ERROR_WRITE_FAILED, 0, kNoFile},
        {"raw, full device, buffered write", Writer::raw, Target::full_device,
         ORV_FORMAT_Y8, kLine, kShort, kNoLimit, ORV_ERROR_CLOSE_FAILED, 0, kNoFile},
        {"tiff, full device", Writer::tiff, Target::full_device, ORV_FORMAT_Y8, kLine,
         kShort, kNoLimit, ORV_ERROR_CLOSE_FAILED, 0, kNoFile},
        {"raw, FIFO closed early", Writer::raw, Target::fifo, ORV_FORMAT_Y8, kLine,
         kLong, kNoLimit, ORV_ERROR_WRITE_FAILED, 0, kNoFile},
        // A FIFO cannot tell its position: the first offset stops the file.
        {"tiff, FIFO", Writer::tiff, Target::fifo, ORV_FORMAT_Y8, kLine, kShort, kNoLimit,
         ORV_ERROR_BAD_PARAM, 1, kNoFile},
        {"raw, size limit, long write", Writer::raw, Target::file,
         ORV_FORMAT_Y8, kLine, kLong, 1000, ORV_ERROR_WRITE_FAILED, 0, 1000},
        {"raw, size limit, buffered write", Writer::raw, Target::file,
         ORV_FORMAT_Y8, kLine, kShort, 100, ORV_ERROR_CLOSE_FAILED, 0, 100},
        {"tiff, size limit, buffered", Writer::tiff, Target::file,
         ORV_FORMAT_Y8, kLine, kShort, 100, ORV_ERROR_CLOSE_FAILED, 0, 100},
        {"tiff, size limit, long", Writer::tiff, Target::file, ORV_FORMAT_Y8, kLine,
         kLong, 100, ORV_ERROR_CLOSE_FAILED, 0, 100},
        {"tiff, unfinished format", Writer::tiff, Target::file,
         ORV_FORMAT_RGB24, kLine, kShort, kNoLimit, ORV_ERROR_BAD_PARAM, 1, 0},
        {"raw, no fault", Writer::raw, Target::file, ORV_FORMAT_Y8, kLine, kLong,
         kNoLimit, ORV_OK, 0, kLong * kLine},
        {"tiff BGR24, full device", Writer::tiff, Target::full_device, ORV_FORMAT_BGR24, 5, 3, kNoLimit, ORV_ERROR_CLOSE_FAILED, 0, kNoFile},
        {"tiff 1920 x 1080, full device", Writer::tiff, Target::full_device, ORV_FORMAT_Y8, 1920, 1080, kNoLimit, ORV_ERROR_CLOSE_FAILED, 0, kNoFile},
        {"tiff BGR24 1920 x 540, full device", Writer::tiff, Target::full_device, ORV_FORMAT_BGR24, 1920, 540, kNoLimit, ORV_ERROR_CLOSE_FAILED, 0, kNoFile},
        {"tiff, a line of four buffers, full device", Writer::tiff, Target::full_device, ORV_FORMAT_Y8, 16384, 2, kNoLimit, ORV_ERROR_CLOSE_FAILED, 0, kNoFile},
        {"tiff, the last byte dropped with the buffer", Writer::tiff, Target::full_device, ORV_FORMAT_Y8, 4097, 1, kNoLimit, ORV_OK, 0, kNoFile},
        {"tiff 1920 x 1080 stopped in the pixels", Writer::tiff, Target::file, ORV_FORMAT_Y8, 1920, 1080, 100000, ORV_ERROR_CLOSE_FAILED, 0, 100000},
        {"tiff BGR24 640 x 480 stopped in the pixels", Writer::tiff, Target::file, ORV_FORMAT_BGR24, 640, 480, 100000, ORV_ERROR_CLOSE_FAILED, 0, 100000},
    };
    for (const auto &f : faults) {
        const uint32_t stride = f.width * (f.format == ORV_FORMAT_BGR24 ? 3 : 1);
        TestImage image(f.format, f.width, f.height, stride);
        const std::vector<uint8_t> pixels = orv_test::random_bytes(image.size(), f.width);
        std::copy(pixels.begin(), pixels.end(), image.data());
        const std::string path = path_of(f.target);
        const char *path_argument =
            f.target == Target::none ? nullptr : path.c_str();
        const pid_t child = fork();
        if (child == 0) _exit(call_in_child(f, image, path_argument));
        if (f.target == Target::fifo) read_a_little(path);
        int wait_status = 0;
        waitpid(child, &wait_status, 0);
        ASSERT_TRUE(WIFEXITED(wait_status)) << f.what;
        EXPECT_EQ(WEXITSTATUS(wait_status) % 32, int(f.status)) << f.what;
        EXPECT_EQ(WEXITSTATUS(wait_status) / 32, f.left_open) << f.what;
        if (f.target == Target::file || f.target == Target::none) {
            EXPECT_EQ(file_exists(path), f.file_size != kNoFile) << f.what;
            if (f.file_size > 0 && (f.writer == Writer::raw || f.file_size > kTiffHeader)) {
                const std::string whole = scratch_path("whole.out");
                ASSERT_EQ(f.writer == Writer::raw ? OVC_FileWrite(image.handle(), whole.c_str(), OVC_FILE_RAW)
                                                  : OVC_FileWriteTiff(image.handle(), whole.c_str()),
                          ORV_OK);
                std::vector<uint8_t> start = read_file(whole);
                start.resize(size_t(f.file_size));
                EXPECT_EQ(read_file(path), start) << f.what;
            } else if (f.file_size != kNoFile) {
                EXPECT_EQ(long(read_file(path).size()), f.file_size) << f.what;
            }
        }
    }
}

} // namespace
