// The frame shared by the four de-interlace methods: the checks and
// queries, the capacity test, and the order in which the 2H frame lines
// are written at the field's stride. A method supplies only its filled
// line: how the line between two field lines is made.
#ifndef ORVANE_DEINTERLACE_FRAME_H
#define ORVANE_DEINTERLACE_FRAME_H

#include <orvane/deinterlace.h>

#include "../common/query.h"

#include <cstdint>

namespace orv {
namespace deinterlace {

// Writes one filled line at `out` from the field line `above` and the one
// below it (`above + stride`). Returns how far the field and the frame
// positions move on afterwards: the stride, except where a line shape says
// otherwise.
using FillLine = uintptr_t (*)(const uint8_t *above, uint32_t stride,
                               uint8_t *out);

// A method's filled line and the least field stride it handles. A method
// whose filled line is a second copy of the line above (LineDup) gives
// instead `copy_and_fill`, which writes the copy and the filled line in
// one pass, from `out` on, and returns the filled line's step.
struct LineShape {
    FillLine fill;
    uint32_t least_stride;
    FillLine copy_and_fill = nullptr;
};

struct ShapeChoice {
    bool handled;
    LineShape shape;
};

// A method that lays its filled line out by pixel format.
using ChooseShape = ShapeChoice (*)(uint32_t format);

ORV_STATUS field_to_frame(OFS_HANDLE field, OFS_HANDLE frame, uint32_t parity,
                          LineShape shape);
ORV_STATUS field_to_frame_by_format(OFS_HANDLE field, OFS_HANDLE frame,
                                    uint32_t parity, ChooseShape choose);

} // namespace deinterlace
} // namespace orv

#endif // ORVANE_DEINTERLACE_FRAME_H
