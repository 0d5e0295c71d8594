// Routing of Bayer sources: OVC_Convert checks that the destination can
// hold the demosaiced image, then calls the one demosaic routine named by
// the source's method and phase and the destination's format.
//
// What each output offers is exactly the table of demosaic routines
// (bayer/member_table.h): a method or phase with no routine there is not
// implemented. The routine's own status is not passed on; once it has
// been called the conversion reports success.
#include "conversion_job.h"

#include "../bayer/member_table.h"

namespace orv {
namespace {

enum class SourceClass { BAY8, BAYn };

// Capacity test of each Bayer pair: w x h x k against m x stride x height.
// The n-bit BGR24 pair states its test doubled on both sides.
bool bayer_capacity(SourceClass source, uint32_t output, Capacity &capacity) {
    switch (output) {
    case ORV_FORMAT_RGB16 & 0xFFu: capacity = {2, 1}; return true;
    case ORV_FORMAT_BGRX32 & 0xFFu: capacity = {4, 1}; return true;
    case ORV_FORMAT_RGBX32 & 0xFFu: capacity = {4, 1}; return true;
    case ORV_FORMAT_BGR24 & 0xFFu:
        capacity = source == SourceClass::BAY8 ? Capacity{3, 1} : Capacity{6, 2};
        return true;
    case ORV_FORMAT_BGR16 & 0xFFu: // made from 8-bit mosaics only
        capacity = {2, 1};
        return source == SourceClass::BAY8;
    default:
        return false;
    }
}

// The depth an n-bit source format carries; BAY10 is the fallback.
uint32_t bayer_depth(uint32_t source_format) {
    switch (source_format) {
    case ORV_FORMAT_BAY12 & 0xFFu: return 12;
    case ORV_FORMAT_BAY14 & 0xFFu: return 14;
    case ORV_FORMAT_BAY16 & 0xFFu: return 16;
    default: return 10;
    }
}

} // namespace

ORV_STATUS convert_from_bayer(const ConversionJob &job, uint32_t key,
                              OFS_HANDLE source, OFS_HANDLE destination) {
    const uint32_t source_format = key >> 8;
    const uint32_t output = key & 0xFFu;
    const SourceClass source_class =
        source_format == (ORV_FORMAT_BAY8 & 0xFFu) ? SourceClass::BAY8
                                                    : SourceClass::BAYn;
    Capacity capacity{};
    if (!bayer_capacity(source_class, output, capacity))
        return ORV_ERROR_NOT_SUPPORTED;
    if (destination_too_small(job, capacity)) return ORV_ERROR_BAD_PARAM;
    const bayer::DemosaicMember *member =
        bayer::find_member(source_class == SourceClass::BAYn, output,
                           job.bayer_method, job.bayer_phase);
    if (member == nullptr) return ORV_ERROR_NOT_IMPLEMENTED;
    member->call(source, destination, bayer_depth(source_format));
    return ORV_OK;
}

} // namespace orv
