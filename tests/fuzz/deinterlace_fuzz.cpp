// OVC_FieldToFrame and its four method routines over any parity, field
// format and geometry (strides from 0, odd ones, each layout's shortest)
// and frame capacity; field and frame are exactly as long as they reach.
#include "fuzz_support.h"
#include "support/field_lines.h"

#include <algorithm>

using namespace orv_fuzz;

ORV_STATUS (*const kMethods[])(OFS_HANDLE, OFS_HANDLE, uint32_t) = {
    OVC_FieldToFrame_LineDup, OVC_FieldToFrame_LineAve,
    OVC_FieldToFrame_Bilinear, OVC_FieldToFrame_Median};

const uint32_t kFormats[] = {
    ORV_FORMAT_Y8,     ORV_FORMAT_XBGR32, ORV_FORMAT_BGRX32, ORV_FORMAT_XRGB32,
    ORV_FORMAT_RGBX32, ORV_FORMAT_BGR24,  ORV_FORMAT_RGB24,  ORV_FORMAT_YUV422,
    ORV_FORMAT_Y16,    ORV_FORMAT_RGB16,  0x00022601u,       0};

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in{data, size};
    const uint32_t method = in.below(5); // 4 is no method
    const bool dispatched = method == 4 || in.flag();
    const uint32_t parity = in.flag() ? 1 + in.below(0xFFFF) : 0;
    const uint32_t format = in.pick(kFormats);
    const uint32_t width = in.below(200);
    const uint32_t height = in.below(in.flag() ? 4 : 20);
    const uint32_t stride = in.below(in.flag() ? 16 : 600);
    const uint32_t frame_stride = in.below(700);
    const uint32_t frame_height = uint32_t(std::max(0, int(2 * height + in.below(4)) - 2));
    const uint32_t invalid = in.below(16);

    const Shape shape = shape_of(method, format);
    const Filled line = filled_line(shape, method == 3, stride);
    const ORV_STATUS expected =
        invalid == 1 || (invalid == 2 && dispatched) ? ORV_ERROR_BAD_PARAM
        : method == 4                                 ? ORV_ERROR_NOT_SUPPORTED
        : method >= 2 && format == 0                  ? ORV_ERROR_BAD_PARAM
        : uint64_t(2) * width * height > uint64_t(frame_height) * frame_stride
            ? ORV_ERROR_BAD_PARAM
        : shape == Shape::unhandled                   ? ORV_ERROR_NOT_SUPPORTED
        : height == 0 || stride < line.least_stride   ? ORV_ERROR_BAD_PARAM
                                                      : ORV_OK;
    Reach extent{64, 64}; // a refusal touches nothing
    if (expected == ORV_OK) extent = frame_reach(height, stride, parity != 0, line);

    check_call(in, {format, width, height, stride, extent.field},
               {ORV_FORMAT_Y8, width, frame_height, frame_stride, extent.frame}, invalid, expected,
               [&](OFS_HANDLE field, OFS_HANDLE frame) {
                   return dispatched ? OVC_FieldToFrame(field, frame, method, parity)
                                     : kMethods[method](field, frame, parity);
               });
    return 0;
}
