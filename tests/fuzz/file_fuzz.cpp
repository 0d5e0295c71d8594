// The file writers over any file type, format and geometry: the pixels are
// exactly what the writer reads (height x stride bytes raw, height lines of
// width bytes for TIFF) and the file holds them as the header says.
#include "fuzz_support.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

using namespace orv_fuzz;

const uint32_t kFormats[] = {ORV_FORMAT_Y8,  ORV_FORMAT_BGR24, ORV_FORMAT_Y8,
                             ORV_FORMAT_BGR24, ORV_FORMAT_Y16, ORV_FORMAT_RGB24,
                             ORV_FORMAT_BGRX32, 0x00022601u, 0};
const uint32_t kFileTypes[] = {OVC_FILE_RAW, OVC_FILE_TIFF, 0, 1, 4};

// One scratch file per process, removed when the process ends.
struct ScratchFile {
    std::string path = "/tmp/orvane-file-fuzz-" + std::to_string(getpid());
    ~ScratchFile() { std::remove(path.c_str()); }
} const scratch;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in{data, size};
    const bool tiff_entry = in.flag();
    const uint32_t file_type = tiff_entry ? OVC_FILE_TIFF : in.pick(kFileTypes);
    const uint32_t format = in.pick(kFormats);
    const uint32_t width = in.below(in.flag() ? 8 : 300);
    const uint32_t height = in.below(in.flag() ? 4 : 40);
    // A stride below the width only on one line, whose step is never taken.
    const uint32_t stride = height <= 1 && in.flag() ? in.below(400) : width + in.below(16);
    const char *path = in.below(32) == 0 ? nullptr : scratch.path.c_str();
    const bool tiff = file_type == OVC_FILE_TIFF;
    const bool finished = format == ORV_FORMAT_Y8 || format == ORV_FORMAT_BGR24;
    // A TIFF call refused after opening its file keeps the stream open for
    // the life of the process: at most 200 such calls a process.
    static unsigned open_streams = 0;
    if (tiff && path && format != 0 && !finished && ++open_streams > 200) return 0;

    const ORV_STATUS expected =
        file_type != OVC_FILE_RAW && !tiff                    ? ORV_ERROR_NOT_SUPPORTED
        : tiff && format == 0                                 ? ORV_ERROR_BAD_PARAM
        : !path                                               ? ORV_ERROR_OPEN_FAILED
        : tiff && (format == ORV_FORMAT_Y16 || format == ORV_FORMAT_RGB24) ? ORV_ERROR_BAD_PARAM
        : tiff && !finished                                   ? ORV_ERROR_BAD_FORMAT
                                                              : ORV_OK;
    const size_t extent = expected != ORV_OK ? 16
                          : tiff             ? lines_extent(height, stride, width)
                                             : size_t(height) * stride;
    const Image image(in, {format, width, height, stride, extent});
    std::remove(scratch.path.c_str());

    const ORV_STATUS status = tiff_entry ? OVC_FileWriteTiff(image.handle, path)
                                         : OVC_FileWrite(image.handle, path, file_type);
    check(status == expected, "status of the writer's checks");
    check(image.unchanged() && image.memory.intact(), "pixels left unwritten");
    if (status != ORV_OK) return 0;
    const Bytes file = read_file(scratch.path);
    if (!tiff) {
        check(file == image.pixels, "a raw dump holds height x stride bytes");
        return 0;
    }
    const size_t header = format == ORV_FORMAT_Y8 ? 186 : 204;
    check(file.size() == header + size_t(width) * height,
          "a TIFF file holds its header and width x height bytes");
    for (uint32_t y = 0; y < height; ++y)
        check(std::equal(image.pixels.begin() + size_t(y) * stride,
                         image.pixels.begin() + size_t(y) * stride + width,
                         file.begin() + header + size_t(y) * width),
              "each strip line holds its line's first width bytes");
    return 0;
}
