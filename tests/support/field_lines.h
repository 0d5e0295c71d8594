// The lines of a de-interlaced frame as the header lays them out: which
// line shape a method gives a format, how long each filled line is for a
// field stride, how far the field and the frame move on after it, and so
// how far a whole frame reaches into the field and the frame. The tests
// and the fuzz targets size their buffers by it, so that any access
// beyond is caught.
#ifndef ORVANE_TEST_FIELD_LINES_H
#define ORVANE_TEST_FIELD_LINES_H

#include <orvaneimage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace orv_test {

// bytes: LineDup and LineAve, whatever the format; the others are the
// layouts of Bilinear and Median.
enum class Shape { bytes, grey, triple, quad, yuv, unhandled };

inline Shape shape_of(uint32_t method, uint32_t format) {
    if (method < OVC_FIELD_BILINEAR) return Shape::bytes;
    switch (format) {
    case ORV_FORMAT_Y8: return Shape::grey;
    case ORV_FORMAT_BGR24: case ORV_FORMAT_RGB24: return Shape::triple;
    case ORV_FORMAT_XBGR32: case ORV_FORMAT_BGRX32:
    case ORV_FORMAT_XRGB32: case ORV_FORMAT_RGBX32: return Shape::quad;
    case ORV_FORMAT_YUV422: return Shape::yuv;
    default: return Shape::unhandled;
    }
}

// A filled line: the least stride it takes, how long it is, and how far
// the field and the frame move on after it. 32-bit lines stop at the last
// whole pixel (Median's three pixels sooner) and move on by what they
// wrote; 24-bit lines are two pixels long even below a six-byte stride,
// Median's Y8 line two bytes below a two-byte one; YUV 4:2:2 lines run one
// byte past an odd stride.
struct Filled {
    uint32_t least_stride, length, step;
};

inline Filled filled_line(Shape shape, bool median, uint32_t s) {
    switch (shape) {
    case Shape::grey:
        return median ? Filled{1, std::max(s, 2u), s} : Filled{2, s, s};
    case Shape::triple: return {3, std::max(s, 6u), s};
    case Shape::quad: {
        uint32_t inner = 0;
        if (median) {
            const uint32_t pixels = (s - 4) >> 2;
            inner = pixels > 4 ? pixels - 4 : 0;
        } else if (s - 8 >= 4) {
            inner = (s - 8) / 4;
        }
        return {8, 8 + 4 * inner, 8 + 4 * inner};
    }
    case Shape::yuv: return {8, s + (s & 1u), s};
    default: return {0, s, s};
    }
}

// How far a frame of `height` field lines at stride `s` reaches: the
// bytes read from the field's start and written from the frame's start.
// Field lines are copied S bytes at a time, a filled line after each but
// the last, the extra copy first (parity 0) or last.
struct Reach {
    size_t field, frame;
};

inline Reach frame_reach(uint32_t height, uint32_t s, bool parity,
                         Filled line) {
    size_t field = 0, frame = 0, field_end = 0, frame_end = 0;
    const auto copy = [&] {
        field_end = std::max(field_end, field + s);
        frame += s;
        frame_end = std::max(frame_end, frame);
    };
    if (!parity) copy();
    for (uint32_t i = 0; i + 1 < height; ++i) {
        copy();
        field_end = std::max(field_end, field + s + line.length);
        frame_end = std::max(frame_end, frame + line.length);
        field += line.step;
        frame += line.step;
    }
    copy();
    if (parity) copy();
    return {field_end, frame_end};
}

} // namespace orv_test

#endif // ORVANE_TEST_FIELD_LINES_H
