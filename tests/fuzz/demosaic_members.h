// The 81 demosaic routines as a table, from the library's own member
// list: what each takes and makes, and the routine itself.
#ifndef ORVANE_FUZZ_DEMOSAIC_MEMBERS_H
#define ORVANE_FUZZ_DEMOSAIC_MEMBERS_H

#include "fuzz_support.h"

namespace orv_fuzz {

struct DemosaicMember {
    uint32_t output; // format low byte
    uint32_t method; // ORV_BAYER_METHOD_
    uint32_t phase;  // ORV_BAYER_PHASE_
    // Exactly one is set: an 8-bit routine, or an n-bit one with a depth.
    ORV_STATUS (*bay8)(OFS_HANDLE, OFS_HANDLE);
    ORV_STATUS (*bayn)(OFS_HANDLE, OFS_HANDLE, uint32_t);
};

#define ORV_FUZZ_METHOD_dup ORV_BAYER_METHOD_DUP
#define ORV_FUZZ_METHOD_ave ORV_BAYER_METHOD_AVE
#define ORV_FUZZ_METHOD_med ORV_BAYER_METHOD_MED
#define ORV_FUZZ_ROUTINES_BAY8(routine) routine, nullptr
#define ORV_FUZZ_ROUTINES_BAYn(routine) nullptr, routine
#define ORV_FUZZ_MEMBER(SRC, OUT, METHOD, PHASE)                             \
    {ORV_FORMAT_##OUT & 0xFFu, ORV_FUZZ_METHOD_##METHOD,                     \
     ORV_BAYER_PHASE_##PHASE,                                                \
     ORV_FUZZ_ROUTINES_##SRC(OVC_##SRC##_to_##OUT##_##METHOD##_##PHASE)},

inline const DemosaicMember kDemosaicMembers[] = {
    ORV_BAYER_MEMBERS(ORV_FUZZ_MEMBER)};

#undef ORV_FUZZ_MEMBER
#undef ORV_FUZZ_ROUTINES_BAYn
#undef ORV_FUZZ_ROUTINES_BAY8
#undef ORV_FUZZ_METHOD_med
#undef ORV_FUZZ_METHOD_ave
#undef ORV_FUZZ_METHOD_dup

inline DemosaicMethod method_of(uint32_t method) {
    return method == ORV_BAYER_METHOD_DUP   ? DemosaicMethod::dup
           : method == ORV_BAYER_METHOD_AVE ? DemosaicMethod::ave
                                            : DemosaicMethod::med;
}

} // namespace orv_fuzz

#endif // ORVANE_FUZZ_DEMOSAIC_MEMBERS_H
