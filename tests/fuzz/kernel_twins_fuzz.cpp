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

#include "support/kernel_levels.h"
#include "support/kernel_rows.h"

#include <cstring>

namespace {

using namespace orv_fuzz;
using orv_test::Filled;
using orv_test::filled_line;

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

struct ConvertCase {
    const orv_test::ConversionRow *row;
    uint32_t width;
    Bytes src, dst;
};

Bytes run_convert(const orv::ConvertKernels &k, const ConvertCase &c) {
    return on_exact_copies(c.src, c.dst, [&](const uint8_t *s, uint8_t *d) {
        c.row->pick(k, c.row->a, c.row->b)(s, d, c.width);
    });
}

void test_convert(FuzzInput &in) {
    static const std::vector<orv_test::ConversionRow> rows = orv_test::conversion_rows();
    static const orv::ConvertKernels *const by_level[orv::kSimdLevels] =
        ORV_TABLES_BY_LEVEL(convert_kernels);
    ConvertCase c{&rows[in.below(uint32_t(rows.size()))], 0, {}, {}};
    if (c.row->pick(*by_level[0], c.row->a, c.row->b) == nullptr) return; // not converted
    c.width = in.below(in.flag() ? 70 : 2100);
    const orv_test::Extent e = c.row->extent(c.width, c.row->src_bytes, c.row->dst_bytes);
    c.src = in.pixels(e.src);
    c.dst = in.pixels(e.dst);
    compare_levels(by_level, c, run_convert);
}

// ---- De-interlace line pairs ---------------------------------------------------

using orv::deinterlace::DeinterlaceKernels;

// Each entry writes a copy of the field line (stride bytes) and the filled
// line after it; LineDup's filled line is a second copy.
struct LineCase {
    const orv_test::FieldLine *line;
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
    const auto &entries = orv_test::field_line_entries();
    LineCase c{&entries[in.below(uint32_t(entries.size()))], 0, {}, {}};
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
