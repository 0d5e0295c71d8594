// Field-to-frame de-interlacing: the median of six, the line order of
// both parities, each method's filled lines against a byte-by-byte model
// of its line shapes (with the field and the frame ending at an
// inaccessible page where the model stops reading and writing), the worked
// values, and every refusal (nothing written).
#include "support/guarded_bytes.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

namespace {

using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

// ---- ORV_median6 -------------------------------------------------------------

uint32_t sorted_median6(const uint32_t (&x)[6]) {
    uint32_t v[6];
    for (int i = 0; i < 6; ++i) v[i] = x[i] & 0xFF;
    std::sort(v, v + 6);
    return (v[2] + v[3]) >> 1;
}

TEST(Median6, WorkedValues) {
    struct Case { uint32_t x[6]; uint32_t expected; };
    const Case cases[] = {{{1, 2, 3, 4, 5, 6}, 3},
                          {{0, 0, 0, 255, 255, 255}, 127},
                          {{7, 7, 7, 7, 7, 8}, 7},
                          {{255, 0, 255, 0, 255, 1}, 128},
                          {{9, 9, 9, 9, 9, 9}, 9},
                          {{256, 256, 256, 257, 257, 257}, 0},
                          {{0x1FF, 0x2FF, 0xFF, 0x100, 0x200, 0}, 127}};
    for (const auto &c : cases)
        EXPECT_EQ(ORV_median6(c.x[0], c.x[1], c.x[2], c.x[3], c.x[4], c.x[5]),
                  c.expected);
}

TEST(Median6, MatchesASortOverEveryTiePatternAndRandomValues) {
    // Every assignment of six levels to the six arguments: every order and
    // every tie pattern, from all equal to all distinct.
    const uint32_t levels[6] = {0, 1, 2, 100, 254, 255};
    for (uint32_t code = 0; code < 46656; ++code) {
        uint32_t x[6];
        for (uint32_t i = 0, rest = code; i < 6; ++i, rest /= 6)
            x[i] = levels[rest % 6];
        ASSERT_EQ(ORV_median6(x[0], x[1], x[2], x[3], x[4], x[5]),
                  sorted_median6(x))
            << x[0] << " " << x[1] << " " << x[2] << " " << x[3] << " "
            << x[4] << " " << x[5];
    }
    std::mt19937 random(6);
    for (int n = 0; n < 200000; ++n) {
        uint32_t x[6];
        for (auto &v : x) v = uint32_t(random());
        ASSERT_EQ(ORV_median6(x[0], x[1], x[2], x[3], x[4], x[5]),
                  sorted_median6(x));
    }
}

// ---- A model of the frame --------------------------------------------------------

enum class Method { dup, ave, bilinear, median };

uint8_t mean(const uint8_t *a, const uint8_t *b, size_t i) {
    return uint8_t((a[i] + b[i]) >> 1);
}

uint8_t kernel(const uint8_t *a, const uint8_t *b, size_t i, size_t d) {
    return uint8_t((105 * (a[i] + b[i]) +
                    75 * (a[i - d] + b[i - d] + a[i + d] + b[i + d])) >> 9);
}

uint8_t median(const uint8_t *a, const uint8_t *b, size_t i, size_t d) {
    const uint32_t x[6] = {a[i - d], a[i], a[i + d], b[i - d], b[i], b[i + d]};
    return uint8_t(sorted_median6(x));
}

bool is_32_bit(uint32_t format) {
    return format == ORV_FORMAT_XBGR32 || format == ORV_FORMAT_BGRX32 ||
           format == ORV_FORMAT_XRGB32 || format == ORV_FORMAT_RGBX32;
}

// How many bytes a filled line writes, and how far the field and the frame
// move on after it.
struct Extent { size_t written, step; };

Extent filled_extent(Method method, uint32_t format, size_t stride) {
    if (method == Method::dup || method == Method::ave) return {stride, stride};
    if (is_32_bit(format)) {
        size_t inner = 0; // pixels between the first and the last
        if (method == Method::bilinear && stride >= 12) inner = (stride - 8) / 4;
        if (method == Method::median && stride >= 24) inner = (stride - 4) / 4 - 4;
        return {8 + 4 * inner, 8 + 4 * inner};
    }
    switch (format) {
    case ORV_FORMAT_Y8: return {std::max<size_t>(stride, 2), stride};
    case ORV_FORMAT_YUV422: return {stride + stride % 2, stride};
    default: return {std::max<size_t>(stride, 6), stride}; // 24-bit
    }
}

// The neighbour distance of byte b in a filled line of `length` bytes (0
// for a vertical mean).
size_t neighbour_distance(uint32_t format, size_t b, size_t length) {
    switch (format) {
    case ORV_FORMAT_Y8: return (b == 0 || b + 1 >= length) ? 0 : 1;
    case ORV_FORMAT_BGR24: case ORV_FORMAT_RGB24:
        return (b < 3 || b + 3 >= length) ? 0 : 3;
    case ORV_FORMAT_YUV422:
        if (b == 0 || b == 1 || b == 3 || b + 3 >= length) return 0;
        return b % 2 == 0 ? 2 : 4;
    default: return (b < 4 || b + 4 >= length) ? 0 : 4; // 32-bit
    }
}

uint8_t filled_byte(Method method, uint32_t format, const uint8_t *a,
                    const uint8_t *b, size_t i, size_t length) {
    const size_t d = neighbour_distance(format, i, length);
    switch (method) {
    case Method::dup: return a[i];
    case Method::ave: return mean(a, b, i);
    case Method::bilinear: return d ? kernel(a, b, i, d) : mean(a, b, i);
    default: return d ? median(a, b, i, d) : mean(a, b, i);
    }
}

// How far the lines of a frame reach: the bytes read from the field's
// start and written from the frame's start.
struct Reach {
    size_t field = 0, frame = 0;
};

// The frame as its lines are written one after another: field lines copied
// whole, a filled line after every field line but the last, the extra copy
// first or last by parity. `frame` holds the frame's bytes beforehand.
Reach model_frame(Method method, uint32_t format, const Bytes &field,
                  size_t stride, uint32_t height, uint32_t parity,
                  Bytes &frame) {
    Reach reach;
    size_t from = 0, to = 0;
    auto copy = [&] {
        std::copy_n(field.begin() + from, stride, frame.begin() + to);
        to += stride;
        reach.field = std::max(reach.field, from + stride);
        reach.frame = std::max(reach.frame, to);
    };
    if (parity == 0) copy();
    for (uint32_t i = 0; i + 1 < height; ++i) {
        copy();
        const Extent e = filled_extent(method, format, stride);
        for (size_t b = 0; b < e.written; ++b)
            frame[to + b] = filled_byte(method, format, &field[from],
                                        &field[from + stride], b, e.written);
        reach.field = std::max(reach.field, from + stride + e.written);
        reach.frame = std::max(reach.frame, to + e.written);
        from += e.step;
        to += e.step;
    }
    copy();
    if (parity != 0) copy();
    return reach;
}

ORV_STATUS run(Method method, OFS_HANDLE field, OFS_HANDLE frame,
               uint32_t parity) {
    return OVC_FieldToFrame(field, frame, uint32_t(method), parity);
}

struct Layout {
    uint32_t format, width, stride;
};

// A buffer handle over memory the test placed.
class HandleAt {
public:
    HandleAt(uint8_t *pixels, uint32_t format, uint32_t width,
             uint32_t height, uint32_t stride)
        : handle(OFS_BufferCreateImage(pixels, width, height, stride, format)) {}
    ~HandleAt() { OFS_BufferDestroy(handle); }
    HandleAt(const HandleAt &) = delete;
    HandleAt &operator=(const HandleAt &) = delete;

    const OFS_HANDLE handle;
};

// Runs through the dispatcher on random fields of 1 to 9 lines and of 40,
// with either parity. The field and the frame end at an inaccessible page
// where the model's lines stop reading and writing; short and odd strides
// read a little past the last field line. The frame's own stride, which
// does not place the lines, is wider than the field's.
void expect_frames_match_model(Method method, const Layout &layout) {
    static orv_test::GuardedBytes field_memory(1 << 16), frame_memory(1 << 16);
    for (uint32_t height : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 40u}) {
        for (uint32_t parity : {0u, 1u, 0x80000000u}) {
            const size_t lines_bytes = size_t(height) * layout.stride;
            Bytes pixels = orv_test::random_bytes(lines_bytes + 8, height + parity);
            Bytes expected(2 * lines_bytes + 8, 0xA5);
            const Reach reach = model_frame(method, layout.format, pixels,
                                            layout.stride, height, parity, expected);
            pixels.resize(reach.field);
            expected.resize(reach.frame);
            const HandleAt field(field_memory.place(pixels), layout.format,
                                 layout.width, height, layout.stride);
            const HandleAt frame(frame_memory.place(Bytes(reach.frame, 0xA5)),
                                 layout.format, layout.width, 2 * height,
                                 layout.stride + 3);
            ASSERT_EQ(run(method, field.handle, frame.handle, parity), ORV_OK);
            ASSERT_EQ(frame_memory.last(reach.frame), expected)
                << "method " << int(method) << std::hex << " format "
                << layout.format << std::dec << " stride " << layout.stride
                << " height " << height << " parity " << parity;
        }
    }
}

// Short, odd and misaligned strides included: 24-bit lines of 4 and 7,
// 32-bit lines of 14 (both methods stop short and shear), YUV lines of 9
// and 11 (one byte longer than the stride). Then lines of several vectors
// at every level: odd and even widths at the smallest stride, and padded
// strides (odd ones; a 32-bit one that is not a multiple of 4).
const Layout layouts[] = {
    {ORV_FORMAT_Y8, 2, 2},       {ORV_FORMAT_Y8, 3, 3},
    {ORV_FORMAT_Y8, 17, 20},     {ORV_FORMAT_BGR24, 1, 4},
    {ORV_FORMAT_BGR24, 1, 6},    {ORV_FORMAT_RGB24, 2, 7},
    {ORV_FORMAT_RGB24, 3, 9},    {ORV_FORMAT_BGR24, 5, 16},
    {ORV_FORMAT_BGRX32, 2, 8},   {ORV_FORMAT_XBGR32, 3, 12},
    {ORV_FORMAT_RGBX32, 3, 14},  {ORV_FORMAT_BGRX32, 5, 20},
    {ORV_FORMAT_RGBX32, 6, 24},  {ORV_FORMAT_XRGB32, 9, 40},
    {ORV_FORMAT_YUV422, 4, 8},   {ORV_FORMAT_YUV422, 4, 9},
    {ORV_FORMAT_YUV422, 5, 11},  {ORV_FORMAT_YUV422, 6, 12},
    {ORV_FORMAT_YUV422, 10, 24},
    {ORV_FORMAT_Y8, 67, 67},     {ORV_FORMAT_Y8, 130, 130},
    {ORV_FORMAT_Y8, 130, 135},   {ORV_FORMAT_BGR24, 45, 135},
    {ORV_FORMAT_RGB24, 64, 192}, {ORV_FORMAT_BGR24, 64, 199},
    {ORV_FORMAT_BGRX32, 33, 132}, {ORV_FORMAT_XRGB32, 50, 200},
    {ORV_FORMAT_BGRX32, 50, 204}, {ORV_FORMAT_RGBX32, 50, 206},
    {ORV_FORMAT_YUV422, 35, 70}, {ORV_FORMAT_YUV422, 64, 128},
    {ORV_FORMAT_YUV422, 64, 131}, {ORV_FORMAT_YUV422, 64, 132},
};

TEST(FieldToFrame, LineDupAndLineAveWorkOnBytesWhateverTheFormat) {
    for (Method method : {Method::dup, Method::ave})
        for (const Layout &layout : layouts)
            expect_frames_match_model(method, layout);
    // Formats the neighbourhood methods refuse are plain bytes here.
    for (Method method : {Method::dup, Method::ave})
        expect_frames_match_model(method, {ORV_FORMAT_Y16, 5, 11});
}

TEST(FieldToFrame, BilinearAndMedianFollowTheirLineShapes) {
    for (Method method : {Method::bilinear, Method::median})
        for (const Layout &layout : layouts)
            expect_frames_match_model(method, layout);
}

// ---- Worked values -----------------------------------------------------------------

// The filled line of a two-line field, parity non-zero: frame line 1.
Bytes filled_line(Method method, uint32_t format, const Bytes &above,
                  const Bytes &below) {
    const uint32_t stride = uint32_t(above.size());
    // Room past the field: a one-byte median line reads a byte beyond it.
    TestImage field(format, 1, 2, stride, 2 * stride + 1, 0);
    std::copy(above.begin(), above.end(), field.data());
    std::copy(below.begin(), below.end(), field.data() + stride);
    TestImage frame(format, 1, 4, stride);
    EXPECT_EQ(run(method, field.handle(), frame.handle(), 1), ORV_OK);
    return Bytes(frame.data() + stride, frame.data() + 2 * stride);
}

TEST(FieldToFrame, WorkedValues) {
    struct Case {
        const char *what;
        Method method;
        uint32_t format;
        Bytes above, below, expected;
    };
    const Case cases[] = {
        {"LineAve means", Method::ave, ORV_FORMAT_Y8, {0xFF, 3, 0}, {0x00, 4, 1}, {0x7F, 3, 0}},
        {"flat 200", Method::bilinear, ORV_FORMAT_Y8, Bytes(5, 200), Bytes(5, 200), {200, 199, 199, 199, 200}},
        {"bright sample, kernel", Method::bilinear, ORV_FORMAT_Y8, {0, 0, 0}, {0, 255, 0}, {0, 52, 0}},
        {"bright sample, kernel 2", Method::bilinear, ORV_FORMAT_Y8, {10, 10, 10}, {10, 200, 10}, {10, 48, 10}},
        {"bright sample, median", Method::median, ORV_FORMAT_Y8, {10, 10, 10}, {10, 200, 10}, {10, 10, 10}},
        {"32-bit stride 8: means", Method::bilinear, ORV_FORMAT_BGRX32, Bytes(8, 9), {1, 2, 3, 4, 5, 6, 7, 8}, {5, 5, 6, 6, 7, 7, 8, 8}},
        {"24-bit stride 6: means", Method::median, ORV_FORMAT_BGR24, Bytes(6, 0), {2, 4, 6, 8, 10, 12}, {1, 2, 3, 4, 5, 6}},
        {"median, one-byte stride", Method::median, ORV_FORMAT_Y8, {8}, {4}, {6}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(filled_line(c.method, c.format, c.above, c.below), c.expected)
            << c.what;
}

TEST(FieldToFrame, YuvWeightsLumaTwoAndChromaFourBytesAway) {
    const Bytes above = {10, 20, 30, 40, 50, 60, 70, 80};
    const Bytes below = {12, 22, 32, 42, 52, 62, 72, 82};
    const Bytes line = filled_line(Method::bilinear, ORV_FORMAT_YUV422, above, below);
    auto k = [&](size_t i, size_t d) { return kernel(above.data(), below.data(), i, d); };
    auto v = [&](size_t i) { return mean(above.data(), below.data(), i); };
    EXPECT_EQ(line, (Bytes{v(0), v(1), k(2, 2), v(3), k(4, 2), v(5), v(6), v(7)}));
}

TEST(FieldToFrame, MedianShearsThirtyTwoBitFramesByThreePixelsPerLine) {
    // Six pixels a line: each filled line is 12 bytes, so the next field
    // line is read, and the next frame line written, 12 bytes early.
    const uint32_t stride = 24, height = 3;
    TestImage field(ORV_FORMAT_BGRX32, 6, height, stride);
    const Bytes pixels = orv_test::random_bytes(field.size(), 24);
    std::copy(pixels.begin(), pixels.end(), field.data());
    TestImage frame(ORV_FORMAT_BGRX32, 6, 2 * height, stride, 2 * height * stride, 0xA5);
    ASSERT_EQ(OVC_FieldToFrame_Median(field.handle(), frame.handle(), 0), ORV_OK);
    const uint8_t *f = pixels.data();
    Bytes expected(f, f + 24);                        // F0
    expected.insert(expected.end(), f, f + 24);       // F0
    for (size_t i = 0; i < 12; ++i)                    // fill(F0, F1)
        expected.push_back(i >= 4 && i < 8 ? median(f, f + 24, i, 4) : mean(f, f + 24, i));
    expected.insert(expected.end(), f + 12, f + 36);  // F1, 12 bytes early
    for (size_t i = 0; i < 12; ++i)
        expected.push_back(i >= 4 && i < 8 ? median(f + 12, f + 36, i, 4)
                                           : mean(f + 12, f + 36, i));
    expected.insert(expected.end(), f + 24, f + 48);  // F2, 24 bytes early
    ASSERT_EQ(expected.size(), 2 * height * stride - 12 * (height - 1));
    expected.resize(frame.size(), 0xA5);               // the frame ends short
    EXPECT_EQ(frame.bytes(), expected);
}

// ---- Refusals ------------------------------------------------------------------------

struct Refusal {
    const char *what;
    Method method;
    uint32_t format, width, height, stride;
    uint32_t frame_height, frame_stride;
    std::function<void(TestImage &, TestImage &)> spoil;
    ORV_STATUS status;
};

TEST(FieldToFrame, RefusalsWriteNothing) {
    auto keep = [](TestImage &, TestImage &) {};
    const Refusal refusals[] = {
        {"field invalid", Method::dup, ORV_FORMAT_Y8, 4, 2, 4, 4, 4,
         [](TestImage &f, TestImage &) { f.set_pointer(OFS_BUFFER_VALID, 0); }, ORV_ERROR_BAD_PARAM},
        {"frame invalid", Method::ave, ORV_FORMAT_Y8, 4, 2, 4, 4, 4,
         [](TestImage &, TestImage &f) { f.set_pointer(OFS_BUFFER_VALID, 0); }, ORV_ERROR_BAD_PARAM},
        {"field address null", Method::bilinear, ORV_FORMAT_Y8, 4, 2, 4, 4, 4,
         [](TestImage &f, TestImage &) { f.set_pointer(OFS_START_ADDR, 0); }, ORV_ERROR_BAD_PARAM},
        {"frame address null", Method::median, ORV_FORMAT_Y8, 4, 2, 4, 4, 4,
         [](TestImage &, TestImage &f) { f.set_pointer(OFS_START_ADDR, 0); }, ORV_ERROR_BAD_PARAM},
        {"format zero", Method::bilinear, 0, 4, 2, 4, 4, 4, keep, ORV_ERROR_BAD_PARAM},
        {"frame too small", Method::dup, ORV_FORMAT_Y8, 4, 3, 4, 5, 4, keep, ORV_ERROR_BAD_PARAM},
        {"too small before the format", Method::median, ORV_FORMAT_Y16, 4, 3, 8, 5, 4, keep, ORV_ERROR_BAD_PARAM},
        {"Y16 not laid out", Method::bilinear, ORV_FORMAT_Y16, 4, 2, 8, 4, 8, keep, ORV_ERROR_NOT_SUPPORTED},
        {"RGB16 not laid out", Method::median, ORV_FORMAT_RGB16, 4, 2, 8, 4, 8, keep, ORV_ERROR_NOT_SUPPORTED},
        {"Y8 code with other upper bits", Method::median, 0x00022601u, 4, 2, 4, 4, 4, keep, ORV_ERROR_NOT_SUPPORTED},
        {"field height 0", Method::ave, ORV_FORMAT_Y8, 4, 0, 4, 4, 4, keep, ORV_ERROR_BAD_PARAM},
        {"Y8 stride 1, kernel", Method::bilinear, ORV_FORMAT_Y8, 1, 2, 1, 4, 1, keep, ORV_ERROR_BAD_PARAM},
        {"Y8 stride 0, median", Method::median, ORV_FORMAT_Y8, 0, 2, 0, 4, 4, keep, ORV_ERROR_BAD_PARAM},
        {"24-bit stride 2", Method::bilinear, ORV_FORMAT_BGR24, 0, 2, 2, 4, 4, keep, ORV_ERROR_BAD_PARAM},
        {"32-bit stride 7", Method::median, ORV_FORMAT_BGRX32, 1, 2, 7, 4, 8, keep, ORV_ERROR_BAD_PARAM},
        {"YUV stride 4", Method::bilinear, ORV_FORMAT_YUV422, 2, 2, 4, 4, 4, keep, ORV_ERROR_BAD_PARAM},
    };
    for (const auto &r : refusals) {
        TestImage field(r.format, r.width, r.height, r.stride, 64, 0x11);
        TestImage frame(r.format, r.width, r.frame_height, r.frame_stride, 64, 0x5A);
        r.spoil(field, frame);
        EXPECT_EQ(run(r.method, field.handle(), frame.handle(), 0), r.status) << r.what;
        EXPECT_EQ(frame.bytes(), Bytes(64, 0x5A)) << r.what;
    }
}

TEST(FieldToFrame, UnknownMethodIsRefusedAfterBothValidityTests) {
    TestImage field(ORV_FORMAT_Y8, 4, 2, 4);
    TestImage frame(ORV_FORMAT_Y8, 4, 4, 4, 16, 0x5A);
    EXPECT_EQ(OVC_FieldToFrame(field.handle(), frame.handle(), 4, 0), ORV_ERROR_NOT_SUPPORTED);
    frame.set_pointer(OFS_BUFFER_VALID, 0);
    EXPECT_EQ(OVC_FieldToFrame(field.handle(), frame.handle(), 4, 0), ORV_ERROR_BAD_PARAM);
    EXPECT_EQ(frame.bytes(), Bytes(16, 0x5A));
}

TEST(FieldToFrame, MethodRoutinesDoNotTestTheFramesValidity) {
    for (auto routine : {OVC_FieldToFrame_LineDup, OVC_FieldToFrame_LineAve,
                         OVC_FieldToFrame_Bilinear, OVC_FieldToFrame_Median}) {
        TestImage field(ORV_FORMAT_Y8, 4, 1, 4, 4, 0x11);
        TestImage frame(ORV_FORMAT_Y8, 4, 2, 4, 8, 0x5A);
        frame.set_pointer(OFS_BUFFER_VALID, 0);
        EXPECT_EQ(routine(field.handle(), frame.handle(), 0), ORV_OK);
        EXPECT_EQ(frame.bytes(), Bytes(8, 0x11)); // F0 twice
    }
}

TEST(FieldToFrame, CapacityTestCountsPixelsAgainstBytes) {
    // 2 x 10 x 2 = 40 pixels against 4 x 10 = 40 bytes passes, though the
    // 32-bit lines written are 160 bytes; the frame's own stride is not
    // used for placing them.
    TestImage field(ORV_FORMAT_BGRX32, 10, 2, 40);
    const Bytes pixels = orv_test::random_bytes(field.size(), 40);
    std::copy(pixels.begin(), pixels.end(), field.data());
    TestImage frame(ORV_FORMAT_BGRX32, 10, 4, 10, 160);
    Bytes expected = frame.bytes();
    EXPECT_EQ(OVC_FieldToFrame_LineDup(field.handle(), frame.handle(), 0), ORV_OK);
    model_frame(Method::dup, ORV_FORMAT_BGRX32, pixels, 40, 2, 0, expected);
    EXPECT_EQ(frame.bytes(), expected);
    // 24 against 24 passes (one frame line fewer fails: see the refusals).
    TestImage grey(ORV_FORMAT_Y8, 4, 3, 4);
    TestImage fits(ORV_FORMAT_Y8, 4, 6, 4);
    EXPECT_EQ(OVC_FieldToFrame_LineAve(grey.handle(), fits.handle(), 1), ORV_OK);
}

TEST(FieldToFrame, CapacityProductsWrapAt32Bits) {
    // 2 x 2^31 x 1 wraps to 0 and fits any frame; a frame of 2^16 x 2^16
    // wraps to 0 and holds nothing.
    struct Case { uint32_t width, frame_height, frame_stride; ORV_STATUS status; };
    const Case cases[] = {{0x80000000u, 2, 4, ORV_OK},
                          {1, 0x10000u, 0x10000u, ORV_ERROR_BAD_PARAM}};
    for (const Case &c : cases) {
        TestImage field(ORV_FORMAT_Y8, c.width, 1, 4, 4, 0x11);
        TestImage frame(ORV_FORMAT_Y8, c.width, c.frame_height, c.frame_stride, 8, 0x5A);
        EXPECT_EQ(OVC_FieldToFrame_LineDup(field.handle(), frame.handle(), 0), c.status);
        EXPECT_EQ(frame.bytes(), Bytes(8, c.status == ORV_OK ? 0x11 : 0x5A));
    }
}

} // namespace
