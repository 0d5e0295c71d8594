// The 81 demosaic routines called directly: the input chooses the
// routine, the depth of an n-bit one, the geometry (widths from the least
// of 2, heights from 0, odd sizes included) and the samples. Both buffers
// are allocated at exactly the extent the header gives, so any other
// access is a finding; a refusal (an invalid buffer, depth 8) must leave
// the destination as it was, and the source is never written.
#include "bayer/member_table.h"
#include "fuzz_support.h"

namespace {

using namespace orv_fuzz;

const uint32_t kDepths[] = {10, 12, 14, 16, 10, 12, 8, 0, 9, 20, 40};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    const orv::bayer::DemosaicMember &member = in.pick(orv::bayer::kDemosaicMembers);
    const uint32_t depth = in.pick(kDepths);
    const uint32_t sample = member.n_bit ? 2 : 1;
    const uint32_t out = orv_test::demosaic_pixel_bytes(member.output);
    const uint32_t width = in.in(2, in.flag() ? 9 : 130);
    const uint32_t height = in.below(in.flag() ? 5 : 24);
    const uint32_t src_stride = width * sample + sample * in.below(4);
    const uint32_t dst_stride = width * out + in.below(9);
    const uint32_t invalid = in.below(16); // 1: source, 2: destination

    const ORV_STATUS expected =
        invalid == 1 || invalid == 2 || (member.n_bit && depth == 8)
            ? ORV_ERROR_BAD_PARAM
            : ORV_OK;
    const DemosaicExtent extent = demosaic_extent(
        method_of(member.method),
        member.output == (ORV_FORMAT_RGB16 & 0xFFu) &&
            member.phase == ORV_BAYER_PHASE_C,
        width, height, sample, src_stride, out, dst_stride);
    const Bytes src_bytes = in.pixels(extent.source);
    const Bytes dst_bytes = in.pixels(extent.destination);
    Image src(src_bytes, member.n_bit ? ORV_FORMAT_BAY12 : ORV_FORMAT_BAY8,
              width, height, src_stride);
    // The destination's own geometry is never read: give it none.
    Image dst(dst_bytes, ORV_FORMAT_Y8, 0, 0, dst_stride);
    if (invalid == 1) src.invalidate();
    if (invalid == 2) dst.invalidate();

    const ORV_STATUS status =
        member.call(src.handle(), dst.handle(), depth);
    check_call(status, expected, "status: only invalid buffers and depth 8 fail",
               src, src_bytes, dst, dst_bytes);
    return 0;
}
