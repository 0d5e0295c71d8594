// The same input through the plain kernel table and through the table of
// every SIMD level up to the one in use (all the machine has, when
// ORVANE_SIMD is unset): each level must write the same bytes and return
// the same result. The input chooses the kernel family, the entry, the
// width or stride and the bytes; every buffer is allocated at exactly the
// extent the plain kernel touches, and the destination starts as bytes
// from the input, so bytes a kernel must leave alone are compared too.
//
// A family is a case reader and a runner over its table; adding a family
// is one more entry in kFamilies.
#include "fuzz_support.h"

#include "convert/kernels.h"
#include "deinterlace/kernels.h"
#include "support/field_lines.h"
#include "support/kernel_levels.h"

#include <cstring>

namespace {

using namespace orv_fuzz;
using orv_test::Filled;
using orv_test::filled_line;
using orv_test::Shape;

// Runs `run` on the plain table and on every twin level; all must agree.
template <class Table, class Case>
void compare_levels(const Table *const (&by_level)[orv::kSimdLevels],
                    const Case &c, Bytes (*run)(const Table &, const Case &)) {
    const Bytes plain = run(*by_level[0], c);
    for (const auto &twin : orv_test::twin_tables(by_level))
        if (run(*twin.table, c) != plain) finding(twin.level);
}

// Runs a kernel on copies of the case's bytes, each copy exactly as long
// as the case says; returns the destination afterwards.
template <class Call>
Bytes on_exact_copies(const Bytes &src, const Bytes &dst, Call call) {
    ExactBytes in(src), out(dst);
    call(in.data(), out.data());
    check(in.bytes() == src, "source left unwritten");
    check(in.intact() && out.intact(), "nothing written outside the buffers");
    return out.bytes();
}

// ---- Conversion rows ---------------------------------------------------------

enum class RowKind { grey, y12p, colour, bgrx32, yuv422 };

struct ConvertCase {
    RowKind kind;
    unsigned a, b; // the entry's indexes in its array
    uint32_t width;
    Bytes src, dst;
};

orv::RowFunction row_of(const orv::ConvertKernels &k, const ConvertCase &c) {
    switch (c.kind) {
    case RowKind::grey: return k.grey[c.a][c.b];
    case RowKind::y12p: return k.y12p[c.b];
    case RowKind::colour: return k.colour[c.a][c.b];
    case RowKind::bgrx32: return k.bgrx32_to_bgr24;
    default: return k.yuv422[c.b];
    }
}

Bytes run_convert(const orv::ConvertKernels &k, const ConvertCase &c) {
    return on_exact_copies(c.src, c.dst, [&](const uint8_t *s, uint8_t *d) {
        row_of(k, c)(s, d, c.width);
    });
}

// Bytes a row reads and writes: per pixel, or per pair for Y12P and
// YUV 4:2:2 (whose odd width converts a whole last pair); RGB30 into
// RGB48 reads the word after the last pixel.
void test_convert(FuzzInput &in) {
    static const uint32_t grey_src[orv::kGreySources] = {1, 2, 2, 2, 2};
    static const uint32_t grey_dst[orv::kGreyClasses] = {1, 2, 4, 2, 2,
                                                         4, 6, 4, 3};
    static const uint32_t colour_src[orv::kColourSources] = {3, 6, 6, 4};
    static const uint32_t colour_dst[orv::kColourDestinations] = {
        2, 2, 4, 4, 6, 2, 2, 4, 4, 6, 4, 4, 3, 3};
    ConvertCase c{RowKind(in.below(5)), 0, 0, 0, {}, {}};
    c.width = in.below(in.flag() ? 70 : 2100);
    const size_t w = c.width, pairs = w / 2 + (w & 1u);
    size_t src = 0, dst = 0;
    switch (c.kind) {
    case RowKind::grey:
        c.a = in.below(orv::kGreySources), c.b = in.below(orv::kGreyClasses);
        src = w * grey_src[c.a], dst = w * grey_dst[c.b];
        break;
    case RowKind::y12p:
        c.b = in.below(orv::kGreyClasses);
        src = pairs * 3, dst = pairs * 2 * grey_dst[c.b];
        break;
    case RowKind::colour:
        c.a = in.below(orv::kColourSources);
        c.b = in.below(orv::kColourDestinations);
        src = w * colour_src[c.a], dst = w * colour_dst[c.b];
        if (c.a == orv::kFromRgb30 &&
            c.b + orv::kFirstColourDestination == 0x0E)
            src += 4;
        break;
    case RowKind::bgrx32:
        src = w * 4, dst = w * 3;
        break;
    case RowKind::yuv422:
        c.b = in.below(orv::kYuvLayouts);
        src = pairs * 4, dst = pairs * 2 * (c.b < orv::kYuvToBgr24 ? 4 : 3);
        break;
    }
    static const orv::ConvertKernels *const by_level[orv::kSimdLevels] =
        ORV_TABLES_BY_LEVEL(convert_kernels);
    if (row_of(*by_level[0], c) == nullptr) return; // a pair not converted
    c.src = in.pixels(src);
    c.dst = in.pixels(dst);
    compare_levels(by_level, c, run_convert);
}

// ---- De-interlace line pairs ---------------------------------------------------

using orv::deinterlace::DeinterlaceKernels;
using orv::deinterlace::LinePair;

// Each entry writes a copy of the field line (stride bytes) and the filled
// line after it; LineDup's filled line is a second copy.
struct LineEntry {
    LinePair DeinterlaceKernels::*entry;
    Shape shape;
    bool median;
};

const LineEntry kLines[] = {
    {&DeinterlaceKernels::line_twice, Shape::bytes, false},
    {&DeinterlaceKernels::average, Shape::bytes, false},
    {&DeinterlaceKernels::bilinear_grey, Shape::grey, false},
    {&DeinterlaceKernels::bilinear_triple, Shape::triple, false},
    {&DeinterlaceKernels::bilinear_quad, Shape::quad, false},
    {&DeinterlaceKernels::bilinear_yuv, Shape::yuv, false},
    {&DeinterlaceKernels::median_grey, Shape::grey, true},
    {&DeinterlaceKernels::median_triple, Shape::triple, true},
    {&DeinterlaceKernels::median_quad, Shape::quad, true},
    {&DeinterlaceKernels::median_yuv, Shape::yuv, true},
};

struct LineCase {
    const LineEntry *line;
    uint32_t stride;
    Bytes field, out; // the two field lines, S bytes apart; copy and filled line
};

// The filled line's bytes, then the step it returned.
Bytes run_line(const DeinterlaceKernels &k, const LineCase &c) {
    uintptr_t step = 0;
    Bytes out = on_exact_copies(c.field, c.out,
                                [&](const uint8_t *field, uint8_t *line) {
                                    step = (k.*(c.line->entry))(field, c.stride,
                                                                line);
                                });
    out.resize(out.size() + sizeof step);
    std::memcpy(out.data() + out.size() - sizeof step, &step, sizeof step);
    return out;
}

void test_deinterlace(FuzzInput &in) {
    LineCase c{&in.pick(kLines), 0, {}, {}};
    const uint32_t least =
        filled_line(c.line->shape, c.line->median, 0).least_stride;
    c.stride = least + in.below(in.flag() ? 80 : 2100);
    const Filled filled = filled_line(c.line->shape, c.line->median, c.stride);
    c.field = in.pixels(size_t(c.stride) + filled.length);
    c.out = in.pixels(size_t(c.stride) + filled.length);
    static const DeinterlaceKernels *const by_level[orv::kSimdLevels] =
        ORV_TABLES_BY_LEVEL(deinterlace_kernels);
    compare_levels(by_level, c, run_line);
}

// ---- The families ------------------------------------------------------------

// Each family reads its case from the input and compares the levels.
void (*const kFamilies[])(FuzzInput &) = {
    test_convert,     // conversion rows
    test_deinterlace, // de-interlace filled lines
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    in.pick(kFamilies)(in);
    return 0;
}
