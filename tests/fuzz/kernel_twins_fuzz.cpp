// The same input through the plain kernel table and the table of every
// SIMD level up to the one in use: all must write the same bytes and
// return the same result. Buffers are exactly the plain kernel's extent;
// the destination starts as input bytes, so bytes left alone count too.
#include "fuzz_support.h"
#include "support/kernel_levels.h"
#include "support/kernel_rows.h"

#include <utility>

using namespace orv_fuzz;
using orv::deinterlace::DeinterlaceKernels;

// Runs `call(table, source, destination)` on exact copies of `src` and
// `dst` for the plain table and every twin level: each must leave the
// source and what lies outside, and all must give the same bytes and result.
template <class Table, class Call>
static void compare_levels(const Table *const (&by_level)[orv::kSimdLevels],
                           const Bytes &src, const Bytes &dst, Call call) {
    const auto run = [&](const Table &table) {
        ExactBytes in(src), out(dst);
        const uintptr_t result = call(table, in.data(), out.data());
        check(in.bytes() == src, "source left unwritten");
        check(in.intact() && out.intact(), "nothing written outside the buffers");
        return std::make_pair(out.bytes(), result);
    };
    const auto plain = run(*by_level[0]);
    for (const auto &twin : twin_tables(by_level))
        check(run(*twin.table) == plain, twin.level);
}

static void test_convert(FuzzInput &in) {
    static const std::vector<ConversionRow> rows = conversion_rows();
    static const orv::ConvertKernels *const by_level[orv::kSimdLevels] =
        ORV_TABLES_BY_LEVEL(convert_kernels);
    const ConversionRow &row = rows[in.below(uint32_t(rows.size()))];
    if (row.pick(*by_level[0], row.a, row.b) == nullptr) return; // not converted
    const uint32_t width = in.below(in.flag() ? 70 : 2100);
    const Extent e = row.extent(width, row.src_bytes, row.dst_bytes);
    compare_levels(by_level, in.pixels(e.src), in.pixels(e.dst),
                   [&](const orv::ConvertKernels &k, const uint8_t *s, uint8_t *d) {
                       row.pick(k, row.a, row.b)(s, d, width);
                       return uintptr_t(0);
                   });
}

// Each entry reads two field lines S bytes apart and writes a copy of the
// first and the filled line after it, and returns its step.
static void test_deinterlace(FuzzInput &in) {
    static const DeinterlaceKernels *const by_level[orv::kSimdLevels] =
        ORV_TABLES_BY_LEVEL(deinterlace_kernels);
    const auto &entries = field_line_entries();
    const FieldLine &line = entries[in.below(uint32_t(entries.size()))];
    const uint32_t stride = filled_line(line.shape, line.median, 0).least_stride +
                            in.below(in.flag() ? 80 : 2100);
    const size_t extent = stride + filled_line(line.shape, line.median, stride).length;
    compare_levels(by_level, in.pixels(extent), in.pixels(extent),
                   [&](const DeinterlaceKernels &k, const uint8_t *field, uint8_t *out) {
                       return (k.*(line.entry))(field, stride, out);
                   });
}

void (*const kFamilies[])(FuzzInput &) = {test_convert, test_deinterlace};

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in{data, size};
    in.pick(kFamilies)(in);
    return 0;
}
