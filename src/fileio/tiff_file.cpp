// OVC_FileWriteTiff: a buffer saved as an uncompressed, single-strip,
// big-endian TIFF file.
//
// The header goes out in one forward pass through the big-endian writers,
// with zero placeholders for the offsets not known yet (the BitsPerSample
// array, both resolutions, the strip), patched afterwards by ftell/fseek.
// 8-bit grey and BGR24 make finished files; 16-bit grey and RGB24 stop
// part-way into the directory and return with the stream still open.
#include <orvane/fileio.h>

#include "../common/query.h"
#include "open_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <stdio_ext.h>

namespace orv {
namespace {

constexpr uint32_t kTypeShort = 3;
constexpr uint32_t kTypeLong = 4;
constexpr uint32_t kTypeRational = 5;

// How each format the writer knows fills the directory: the entries it
// declares, samples per pixel (BitsPerSample's count too), bits per
// sample and PhotometricInterpretation, and, for the two formats it never
// finishes, where it stops, the stream left open. Formats are told apart
// by their full 32-bit codes; any other stops before the directory.
enum class StopsAt { nowhere, bits_per_sample, strip_byte_count };

struct TiffLayout {
    uint32_t format;
    uint32_t entries, samples, bits, photometric;
    StopsAt stops_at;
};

constexpr TiffLayout kLayouts[] = {
    {ORV_FORMAT_Y8, 13, 1, 8, 1, StopsAt::nowhere},
    {ORV_FORMAT_BGR24, 14, 3, 8, 2, StopsAt::nowhere},
    // After its count: the file ends inside the directory, ten of its
    // thirteen entries written.
    {ORV_FORMAT_Y16, 13, 1, 16, 1, StopsAt::strip_byte_count},
    // After BitsPerSample's tag and type, fourteen entries declared.
    {ORV_FORMAT_RGB24, 14, 3, 8, 2, StopsAt::bits_per_sample},
};

const TiffLayout *layout_of(uint32_t format) {
    for (const TiffLayout &layout : kLayouts)
        if (layout.format == format) return &layout;
    return nullptr;
}

void put_tag(FILE *f, uint32_t tag, uint32_t type, uint32_t count) {
    OVC_fput_ui16m(f, tag);
    OVC_fput_ui16m(f, type);
    OVC_fput_ui32m(f, count);
}

// A SHORT sits in the first half of the value field.
void put_short_value(FILE *f, uint32_t value) {
    OVC_fput_ui16m(f, value);
    OVC_fput_ui16m(f, 0);
}

void put_short_entry(FILE *f, uint32_t tag, uint32_t value) {
    put_tag(f, tag, kTypeShort, 1);
    put_short_value(f, value);
}

void put_long_entry(FILE *f, uint32_t tag, uint32_t value) {
    put_tag(f, tag, kTypeLong, 1);
    OVC_fput_ui32m(f, value);
}

// Failures after the open leave the stream open and unflushed until exit.
ORV_STATUS fail_leaving_stream_open(FILE *, ORV_STATUS status) {
    return status;
}

// Position of the next byte, or -1. Offsets are stored as their low 32 bits.
long position(FILE *f) { return std::ftell(f); }

void patch(FILE *f, long slot, long value, long resume_at) {
    std::fseek(f, slot, SEEK_SET);
    OVC_fput_ui32m(f, static_cast<uint32_t>(value));
    std::fseek(f, resume_at, SEEK_SET);
}

// A 300/1 RATIONAL written here and its offset patched into `slot`.
bool put_resolution(FILE *f, long slot) {
    const long at = position(f);
    if (at == -1) return false;
    OVC_fput_ui32m(f, 300);
    OVC_fput_ui32m(f, 1);
    patch(f, slot, at, at + 8);
    return true;
}

// Puts n bytes into the stream exactly as n putc calls would, a buffer at
// a time. The bytes that fit in the stream's buffer are copied in by one
// block write, kept below a whole buffer so that the stream never writes
// them straight through; a byte that finds the buffer full goes through
// putc itself, which flushes the buffer, or, when the device refuses the
// flush, drops that byte and empties the buffer. So the system sees the
// writes of a byte-by-byte loop, and a close after a failing device finds
// the same bytes left to write (its status depends on them).
void put_bytes_as_putc(FILE *f, const uint8_t *p, size_t n) {
    const size_t buffer = __fbufsize(f);
    while (n > 0) {
        const size_t pending = __fpending(f);
        if (buffer < 2 || pending >= buffer) {
            putc_unlocked(*p, f);
            ++p;
            --n;
            continue;
        }
        const size_t run = std::min({buffer - pending, buffer - 1, n});
        fwrite_unlocked(p, 1, run, f);
        p += run;
        n -= run;
    }
}

// Each line gives exactly `width` bytes in memory order, then the line
// start moves on by stride - width (a 32-bit difference) beyond them. A
// BGR24 line thus gives the first third of its pixel bytes, in B, G, R
// order. Failed writes are not reported here.
void put_pixels(FILE *f, const uint8_t *line, uint32_t width, uint32_t height,
                uint32_t stride) {
    const uint32_t line_gap = stride - width;
    for (uint32_t y = 0; y < height; ++y) {
        put_bytes_as_putc(f, line, width);
        line = advance(line, static_cast<uintptr_t>(width) + line_gap);
    }
}

ORV_STATUS write_tiff(FILE *f, uint32_t format, const uint8_t *pixels,
                      uint32_t height, uint32_t width, uint32_t stride) {
    OVC_fput_ui16m(f, 0x4D4D);
    OVC_fput_ui16m(f, 42);
    OVC_fput_ui32m(f, 8);

    const TiffLayout *layout = layout_of(format);
    if (layout == nullptr) {
        drop_format_failure(format, "IFD");
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_FORMAT);
    }
    OVC_fput_ui16m(f, layout->entries);

    put_long_entry(f, 254, 0);          // NewSubfileType
    put_short_entry(f, 256, width);     // ImageWidth, low 16 bits
    put_short_entry(f, 257, height);    // ImageLength, low 16 bits
    OVC_fput_ui16m(f, 258);             // BitsPerSample
    OVC_fput_ui16m(f, kTypeShort);
    if (layout->stops_at == StopsAt::bits_per_sample) {
        drop_format_failure(format, "BitsPerSample");
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    }
    OVC_fput_ui32m(f, layout->samples);
    long bits_slot = 0; // one value in the entry, or an array patched in
    if (layout->samples == 1) {
        put_short_value(f, layout->bits);
    } else {
        bits_slot = position(f);
        if (bits_slot == -1)
            return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
        OVC_fput_ui32m(f, 0);
    }

    put_short_entry(f, 259, 1);                     // Compression: none
    put_short_entry(f, 262, layout->photometric);   // PhotometricInterpretation
    put_tag(f, 273, kTypeLong, 1);                  // StripOffsets
    const long strip_slot = position(f);
    if (strip_slot == -1)
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    OVC_fput_ui32m(f, 0);
    put_short_entry(f, 277, layout->samples);       // SamplesPerPixel
    put_long_entry(f, 278, height);                 // RowsPerStrip
    put_long_entry(f, 279, width * height * layout->samples); // StripByteCounts
    if (layout->stops_at == StopsAt::strip_byte_count) {
        drop_format_failure(format, "StripByteCount");
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    }

    put_tag(f, 282, kTypeRational, 1); // XResolution
    const long x_resolution_slot = position(f);
    if (x_resolution_slot == -1)
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    OVC_fput_ui32m(f, 0);
    put_tag(f, 283, kTypeRational, 1); // YResolution
    const long y_resolution_slot = position(f);
    if (y_resolution_slot == -1)
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    OVC_fput_ui32m(f, 0);

    if (layout->samples == 3)
        put_short_entry(f, 284, 1); // PlanarConfiguration: chunky
    put_short_entry(f, 296, 1);     // ResolutionUnit: none
    OVC_fput_ui32m(f, 0);           // no next directory
    if (layout->samples == 3) {
        const long bits_array = position(f);
        if (bits_array == -1)
            return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
        for (int i = 0; i < 3; ++i) OVC_fput_ui16m(f, layout->bits);
        patch(f, bits_slot, bits_array, bits_array + 6);
    }

    if (!put_resolution(f, x_resolution_slot) ||
        !put_resolution(f, y_resolution_slot))
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);

    const long strip = position(f);
    if (strip == -1) return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    patch(f, strip_slot, strip, strip);

    put_pixels(f, pixels, width, height, stride);
    if (std::fclose(f) != 0) return ORV_ERROR_CLOSE_FAILED;
    return ORV_OK;
}

} // namespace
} // namespace orv

extern "C" ORV_API ORV_STATUS OVC_FileWriteTiff(OFS_HANDLE buffer,
                                                const char *path) {
    using namespace orv;
    if (!buffer_is_valid(buffer)) return ORV_ERROR_BAD_PARAM;
    const uint32_t format = query_u32(buffer, OFS_FORMAT);
    if (format == 0) return ORV_ERROR_BAD_PARAM;
    // The address is not tested: a null one fails only if pixels are due.
    const uint8_t *pixels = query_address(buffer);
    const uint32_t height = query_u32(buffer, OFS_HEIGHT);
    const uint32_t width = query_u32(buffer, OFS_WIDTH);
    const uint32_t stride = query_u32(buffer, OFS_STRIDE);

    FILE *stream = open_for_writing(path);
    if (stream == nullptr) return ORV_ERROR_OPEN_FAILED;
    return write_tiff(stream, format, pixels, height, width, stride);
}
