// Builds the conversion table of one instruction set from the row
// templates compiled in the including file: the plain rows, or a plain row
// finished after a bulk kernel where the file gives one. Included once,
// by kernels.cpp for the plain table and by each SIMD file after its bulk
// kernels.
#ifndef ORVANE_CONVERT_KERNEL_TABLE_H
#define ORVANE_CONVERT_KERNEL_TABLE_H

#include "colour_rows.h"
#include "grey_rows.h"
#include "kernels.h"
#include "yuv422_rows.h"

namespace orv {
inline namespace ORV_ISA {

// Bulk::run converts the first n pixels (n even) and returns n; the plain
// row takes over from the pair where it stopped. Each side moves by its
// bytes per pair of pixels.
template <class Bulk, RowFunction Plain, uint32_t SrcPairBytes,
          uint32_t DstPairBytes>
void bulk_then_plain(const uint8_t *src, uint8_t *dst, uint32_t width) {
    const uint32_t done = Bulk::run(src, dst, width);
    Plain(src + done / 2 * SrcPairBytes, dst + done / 2 * DstPairBytes,
          width - done);
}

template <class Bulk, RowFunction Plain, uint32_t SrcPairBytes,
          uint32_t DstPairBytes>
constexpr RowFunction with_bulk() {
    if constexpr (Bulk::present)
        return bulk_then_plain<Bulk, Plain, SrcPairBytes, DstPairBytes>;
    else
        return Plain;
}

namespace table {

template <class Src, class Dst> constexpr RowFunction grey_row() {
    return with_bulk<grey::GreyBulk<Src, Dst>, grey::grey_row<Src, Dst>,
                     2 * Src::bytes, 2 * Dst::bytes>();
}

template <class Dst> constexpr RowFunction y12p_row() {
    return with_bulk<grey::Y12pBulk<Dst>, grey::y12p_row<Dst>, 3,
                     2 * Dst::bytes>();
}

template <class Src, class Dst> constexpr RowFunction colour_row() {
    return with_bulk<colour::ColourBulk<Src, Dst>,
                     colour::pair_row<Src, Dst>, 2 * Src::bytes,
                     2 * Dst::bytes>();
}

template <class Layout> constexpr RowFunction yuv422_row() {
    return with_bulk<yuv422::YuvBulk<Layout>, yuv422::yuv422_row<Layout>, 4,
                     2 * Layout::bytes>();
}

// Every destination class of a grey source.
template <class Src> constexpr void grey_source(ConvertKernels &k) {
    using namespace grey;
    RowFunction *row = k.grey[Src::index];
    row[kToGrey8] = grey_row<Src, ToGrey8>();
    row[kToGrey16] = grey_row<Src, ToGrey16>();
    row[kToGrey32] = grey_row<Src, ToGrey32>();
    row[kTo555] = grey_row<Src, To555>();
    row[kTo565] = grey_row<Src, To565>();
    row[kToBytes32] = grey_row<Src, ToBytes32>();
    row[kToWords48] = grey_row<Src, ToWords48>();
    row[kToPacked30] = grey_row<Src, ToPacked30>();
    row[kToBytes24] = grey_row<Src, ToBytes24>();
}

// The fourteen destinations of a colour source, by low byte from 0x05.
template <class Src> constexpr void colour_source(RowFunction (&row)[14]) {
    using namespace colour;
    row[0x05 - kFirstColourDestination] = colour_row<Src, ToRgb15>();
    row[0x06 - kFirstColourDestination] = colour_row<Src, ToRgb16>();
    row[0x07 - kFirstColourDestination] = colour_row<Src, ToXbgr32>();
    row[0x08 - kFirstColourDestination] = colour_row<Src, ToBgrx32>();
    row[0x09 - kFirstColourDestination] = colour_row<Src, ToBgr48>();
    row[0x0A - kFirstColourDestination] = colour_row<Src, ToBgr15>();
    row[0x0B - kFirstColourDestination] = colour_row<Src, ToBgr16>();
    row[0x0C - kFirstColourDestination] = colour_row<Src, ToXrgb32>();
    row[0x0D - kFirstColourDestination] = colour_row<Src, ToRgbx32>();
    row[0x0E - kFirstColourDestination] = colour_row<Src, ToRgb48>();
    row[0x0F - kFirstColourDestination] = colour_row<Src, ToRgb30>();
    row[0x10 - kFirstColourDestination] = colour_row<Src, ToBgr30>();
    row[0x11 - kFirstColourDestination] = colour_row<Src, ToBgr24>();
    row[0x12 - kFirstColourDestination] = colour_row<Src, ToRgb24>();
}

} // namespace table

constexpr ConvertKernels make_convert_kernels() {
    using namespace grey;
    ConvertKernels k{};
    table::grey_source<FromY8>(k);
    table::grey_source<FromU16<16>>(k);
    table::grey_source<FromU16<10>>(k);
    table::grey_source<FromU16<12>>(k);
    table::grey_source<FromU16<14>>(k);
    k.y12p[kTo565] = table::y12p_row<To565>();
    k.y12p[kToBytes32] = table::y12p_row<ToBytes32>();
    k.y12p[kToBytes24] = table::y12p_row<ToBytes24>();
    table::colour_source<colour::FromBgr24>(k.colour[kFromBgr24]);
    table::colour_source<colour::FromBgr48>(k.colour[kFromBgr48]);
    table::colour_source<colour::FromBgr36>(k.colour[kFromBgr36]);
    table::colour_source<colour::FromRgb30>(k.colour[kFromRgb30]);
    k.bgrx32_to_bgr24 =
        table::colour_row<colour::FromBgrx32, colour::ToBgr24>();
    k.yuv422[kYuvToXbgr32] = table::yuv422_row<LayoutXbgr32>();
    k.yuv422[kYuvToBgrx32] = table::yuv422_row<LayoutBgrx32>();
    k.yuv422[kYuvToXrgb32] = table::yuv422_row<LayoutXrgb32>();
    k.yuv422[kYuvToRgbx32] = table::yuv422_row<LayoutRgbx32>();
    k.yuv422[kYuvToBgr24] = table::yuv422_row<LayoutBgr24>();
    k.yuv422[kYuvToRgb24] = table::yuv422_row<LayoutRgb24>();
    return k;
}

// This file's table, in orv::<instruction set>.
constexpr ConvertKernels convert_kernels = make_convert_kernels();

} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_CONVERT_KERNEL_TABLE_H
