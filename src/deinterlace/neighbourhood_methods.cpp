// Bilinear and Median: filled lines made from the 3 x 2 neighbourhood of
// each byte (the byte and its same-channel neighbours left and right, in
// the line above and the line below), laid out by pixel format.
//
// Both methods share the line shapes; they differ in the value of a
// neighbourhood (the weighted kernel or the median of six) and in how many
// 32-bit pixels they reach. The first and last pixels of a line, where a
// side neighbour is missing, are plain vertical means. The values and the
// line shapes live in byte_lines.h; both methods take their line pairs (a
// field line's copy and its filled line) from the kernel table of the
// level in use.
#include "byte_lines.h"
#include "frame_assembly.h"
#include "kernels.h"

namespace orv {
namespace deinterlace {
namespace {

using field_lines::MedianOfSix;
using field_lines::WeightedKernel;

// A method's lines for each layout, and the least Y8 stride it handles.
struct MethodLines {
    LinePair grey;
    uint32_t least_grey_stride;
    LinePair triple, quad, yuv;
};

// The layout is told by the whole format code. Strides below the smallest
// line of a layout are refused by the frame.
ShapeChoice shape_for(uint32_t format, const MethodLines &lines) {
    switch (format) {
    case ORV_FORMAT_Y8:
        return {true, {lines.grey, lines.least_grey_stride}};
    case ORV_FORMAT_XBGR32: case ORV_FORMAT_BGRX32:
    case ORV_FORMAT_XRGB32: case ORV_FORMAT_RGBX32:
        return {true, {lines.quad, 8}};
    case ORV_FORMAT_BGR24: case ORV_FORMAT_RGB24:
        return {true, {lines.triple, 3}};
    case ORV_FORMAT_YUV422:
        return {true, {lines.yuv, 8}};
    default:
        return {false, {nullptr, 0}};
    }
}

ShapeChoice bilinear_shape(uint32_t format) {
    const DeinterlaceKernels &k = kernels_in_use();
    return shape_for(format, {k.bilinear_grey,
                              WeightedKernel::least_grey_stride,
                              k.bilinear_triple, k.bilinear_quad,
                              k.bilinear_yuv});
}

ShapeChoice median_shape(uint32_t format) {
    const DeinterlaceKernels &k = kernels_in_use();
    return shape_for(format, {k.median_grey, MedianOfSix::least_grey_stride,
                              k.median_triple, k.median_quad, k.median_yuv});
}

} // namespace
} // namespace deinterlace
} // namespace orv

extern "C" ORV_API uint32_t ORV_median6(uint32_t x0, uint32_t x1, uint32_t x2,
                                        uint32_t x3, uint32_t x4,
                                        uint32_t x5) {
    return orv::field_lines::median_of_six(x0, x1, x2, x3, x4, x5);
}

extern "C" ORV_API ORV_STATUS OVC_FieldToFrame_Bilinear(OFS_HANDLE field,
                                                       OFS_HANDLE frame,
                                                       uint32_t parity) {
    using namespace orv::deinterlace;
    return field_to_frame_by_format(field, frame, parity, bilinear_shape);
}

extern "C" ORV_API ORV_STATUS OVC_FieldToFrame_Median(OFS_HANDLE field,
                                                     OFS_HANDLE frame,
                                                     uint32_t parity) {
    using namespace orv::deinterlace;
    return field_to_frame_by_format(field, frame, parity, median_shape);
}
