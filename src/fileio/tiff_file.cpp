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

// The formats are told apart by their full 32-bit codes.
bool is_colour(uint32_t format) {
    return format == ORV_FORMAT_BGR24 || format == ORV_FORMAT_RGB24;
}
bool is_grey(uint32_t format) {
    return format == ORV_FORMAT_Y8 || format == ORV_FORMAT_Y16;
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

    uint32_t entries;
    if (is_colour(format)) {
        entries = 14;
    } else if (is_grey(format)) {
        entries = 13;
    } else {
        drop_format_failure(format, "IFD");
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_FORMAT);
    }
    OVC_fput_ui16m(f, entries);

    put_long_entry(f, 254, 0);          // NewSubfileType
    put_short_entry(f, 256, width);     // ImageWidth, low 16 bits
    put_short_entry(f, 257, height);    // ImageLength, low 16 bits
    OVC_fput_ui16m(f, 258);             // BitsPerSample
    OVC_fput_ui16m(f, kTypeShort);
    long bits_slot = 0;
    if (format == ORV_FORMAT_Y8) {
        OVC_fput_ui32m(f, 1);
        put_short_value(f, 8);
    } else if (format == ORV_FORMAT_Y16) {
        OVC_fput_ui32m(f, 1);
        put_short_value(f, 16);
    } else if (format == ORV_FORMAT_BGR24) {
        OVC_fput_ui32m(f, 3);
        bits_slot = position(f);
        if (bits_slot == -1)
            return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
        OVC_fput_ui32m(f, 0);
    } else { // RGB24 stops here, with 14 entries declared
        drop_format_failure(format, "BitsPerSample");
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    }

    put_short_entry(f, 259, 1); // Compression: none
    put_tag(f, 262, kTypeShort, 1); // PhotometricInterpretation
    if (is_grey(format)) {
        put_short_value(f, 1);
    } else if (format == ORV_FORMAT_BGR24) {
        put_short_value(f, 2);
    } else {
        drop_format_failure(format, "PhotometricInterpretation");
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    }

    put_tag(f, 273, kTypeLong, 1); // StripOffsets
    const long strip_slot = position(f);
    if (strip_slot == -1)
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    OVC_fput_ui32m(f, 0);

    if (is_grey(format)) {
        put_short_entry(f, 277, 1); // SamplesPerPixel
    } else if (format == ORV_FORMAT_BGR24) {
        put_short_entry(f, 277, 3);
    } else {
        drop_format_failure(format, "SamplesPerPixel");
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    }
    put_long_entry(f, 278, height); // RowsPerStrip

    put_tag(f, 279, kTypeLong, 1); // StripByteCounts
    if (format == ORV_FORMAT_Y8) {
        OVC_fput_ui32m(f, width * height);
    } else if (format == ORV_FORMAT_BGR24) {
        OVC_fput_ui32m(f, width * height * 3);
    } else {
        // 16-bit grey writes its count and stops: the file ends inside its
        // directory, ten of its thirteen entries written.
        if (format == ORV_FORMAT_Y16) OVC_fput_ui32m(f, width * height);
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

    if (is_colour(format)) { // only BGR24 gets here
        put_short_entry(f, 284, 1); // PlanarConfiguration: chunky
        put_short_entry(f, 296, 1); // ResolutionUnit: none
        OVC_fput_ui32m(f, 0);       // no next directory
        const long bits_array = position(f);
        if (bits_array == -1)
            return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
        OVC_fput_ui16m(f, 8);
        OVC_fput_ui16m(f, 8);
        OVC_fput_ui16m(f, 8);
        patch(f, bits_slot, bits_array, bits_array + 6);
    }
    if (is_grey(format)) { // only Y8 gets here
        put_short_entry(f, 296, 1);
        OVC_fput_ui32m(f, 0);
    }

    if (!put_resolution(f, x_resolution_slot) ||
        !put_resolution(f, y_resolution_slot))
        return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);

    const long strip = position(f);
    if (strip == -1) return fail_leaving_stream_open(f, ORV_ERROR_BAD_PARAM);
    patch(f, strip_slot, strip, strip);

    // 16-bit grey never reaches the pixel data: StripByteCounts stopped it.
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
