// The frame shared by the four de-interlace methods: the checks and
// queries, the capacity test, and the order in which the 2H frame lines
// are written at the field's stride. A method supplies only its filled
// line: how the line between two field lines is made.
#ifndef ORVANE_DEINTERLACE_FRAME_ASSEMBLY_H
#define ORVANE_DEINTERLACE_FRAME_ASSEMBLY_H

#include <orvane/deinterlace.h>

#include "../common/query.h"

#include <cstdint>

namespace orv {
namespace deinterlace {

// Writes the copy of the field line `above` (stride bytes) at `copy` and,
// right after it, the filled line made from `above` and the line below it
// (`above + stride`). Returns how far the field and the frame positions
// move on after the filled line: the stride, except where a line shape
// says otherwise. The two lines are written in one pass, so a line of the
// field is read once for both.
using LinePair = uintptr_t (*)(const uint8_t *above, uint32_t stride,
                               uint8_t *copy);

// A method's line pair and the least field stride it handles.
struct LineShape {
    LinePair pair;
    uint32_t least_stride;
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

#endif // ORVANE_DEINTERLACE_FRAME_ASSEMBLY_H
