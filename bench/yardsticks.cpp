// The yardsticks' code. Built with -O3 -march=native (bench/CMakeLists.txt)
// so the plain loops get whatever the compiler makes of them for this CPU.
#include "yardsticks.h"

#include <cstdio>
#include <cstring>

#if ORV_BENCH_WITH_LIBTIFF
#include <tiffio.h>
#endif

namespace orv_bench {

bool memcpy_per_line(const PeerImages &images) {
    const Plane &field = images.source;
    const size_t stride = size_t(field.stride);
    uint8_t *frame = images.destination.data;
    for (int y = 0; y < field.height; ++y) {
        const uint8_t *line = field.data + y * stride;
        std::memcpy(frame, line, stride);
        std::memcpy(frame + stride, line, stride);
        frame += 2 * stride;
    }
    return true;
}

bool plain_line_average(const PeerImages &images) {
    const Plane &field = images.source;
    const size_t stride = size_t(field.stride);
    uint8_t *frame = images.destination.data;
    std::memcpy(frame, field.data, stride);
    frame += stride;
    for (int y = 0; y + 1 < field.height; ++y) {
        const uint8_t *above = field.data + y * stride;
        const uint8_t *below = above + stride;
        std::memcpy(frame, above, stride);
        frame += stride;
        for (size_t i = 0; i < stride; ++i)
            frame[i] = uint8_t((above[i] + below[i]) >> 1);
        frame += stride;
    }
    std::memcpy(frame, field.data + (field.height - 1) * stride, stride);
    return true;
}

bool fopen_fwrite_fclose(const PeerImages &images) {
    const Plane &image = images.source;
    const size_t size = size_t(image.stride) * size_t(image.height);
    FILE *file = std::fopen(images.file, "wb");
    if (file == nullptr) return false;
    const size_t written = std::fwrite(image.data, 1, size, file);
    return (std::fclose(file) == 0) & (written == size);
}

#if ORV_BENCH_WITH_LIBTIFF
bool libtiff_strip(const PeerImages &images) {
    const Plane &image = images.source;
    if (image.stride != image.width) return false; // one strip, no padding
    TIFF *tiff = TIFFOpen(images.file, "wb");      // b: big-endian
    if (tiff == nullptr) return false;
    const auto width = uint32_t(image.width), height = uint32_t(image.height);
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, 0);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, height);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 300.0);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_NONE);
    const tmsize_t size = tmsize_t(width) * height;
    const bool written = TIFFWriteEncodedStrip(tiff, 0, image.data, size) == size;
    TIFFClose(tiff);
    return written;
}

// TIFFGetVersion() begins "LIBTIFF, Version 4.5.0" and goes on over lines.
void record_libtiff_version() {
    std::string version = TIFFGetVersion();
    version = version.substr(0, version.find('\n'));
    version = version.substr(version.rfind(' ') + 1);
    benchmark::AddCustomContext("libtiff", version);
}
#endif

} // namespace orv_bench
