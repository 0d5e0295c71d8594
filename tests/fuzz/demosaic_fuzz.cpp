// The 81 demosaic routines called directly, with any depth and geometry
// (widths from 2, heights from 0, odd sizes): only an invalid buffer or
// depth 8 is refused.
#include "bayer/member_table.h"
#include "fuzz_support.h"

using namespace orv_fuzz;

const uint32_t kDepths[] = {10, 12, 14, 16, 10, 12, 8, 0, 9, 20, 40};

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in{data, size};
    const orv::bayer::DemosaicMember &member = in.pick(orv::bayer::kDemosaicMembers);
    const uint32_t depth = in.pick(kDepths);
    const uint32_t sample = member.n_bit ? 2 : 1;
    const uint32_t out = demosaic_pixel_bytes(member.output);
    const uint32_t width = 2 + in.below(in.flag() ? 8 : 129);
    const uint32_t height = in.below(in.flag() ? 5 : 24);
    const uint32_t src_stride = width * sample + sample * in.below(4);
    const uint32_t dst_stride = width * out + in.below(9);
    const uint32_t invalid = in.below(16);

    const bool refused = invalid == 1 || invalid == 2 || (member.n_bit && depth == 8);
    const DemosaicExtent extent = demosaic_extent(
        method_of(member.method),
        member.output == (ORV_FORMAT_RGB16 & 0xFFu) && member.phase == ORV_BAYER_PHASE_C,
        width, height, sample, src_stride, out, dst_stride);
    // The destination's own geometry is never read: it is given none.
    check_call(in, {member.n_bit ? ORV_FORMAT_BAY12 : ORV_FORMAT_BAY8, width, height,
                    src_stride, extent.source},
               {ORV_FORMAT_Y8, 0, 0, dst_stride, extent.destination}, invalid,
               refused ? ORV_ERROR_BAD_PARAM : ORV_OK,
               [&](OFS_HANDLE s, OFS_HANDLE d) { return member.call(s, d, depth); });
    return 0;
}
