// The 81 demosaic routines as one table, built from the member list:
// what OVC_Convert routes a Bayer source to, and what the tests walk
// through. A combination that is not in the table is not implemented.
#ifndef ORVANE_BAYER_MEMBER_TABLE_H
#define ORVANE_BAYER_MEMBER_TABLE_H

#include <orvane/bayer.h>

#include <cstdint>

namespace orv {
namespace bayer {

using Bay8Routine = ORV_STATUS (*)(OFS_HANDLE, OFS_HANDLE);
using BaynRoutine = ORV_STATUS (*)(OFS_HANDLE, OFS_HANDLE, uint32_t);

struct DemosaicMember {
    const char *name;
    uint32_t output; // low byte of the destination format
    uint32_t method; // ORV_BAYER_METHOD_DUP, _AVE or _MED
    uint32_t phase;  // ORV_BAYER_PHASE_A .. _D
    bool n_bit;      // BAYn: 16-bit words, and the routine takes the depth
    Bay8Routine bay8;
    BaynRoutine bayn;

    ORV_STATUS call(OFS_HANDLE source, OFS_HANDLE destination,
                    uint32_t depth) const {
        return n_bit ? bayn(source, destination, depth)
                     : bay8(source, destination);
    }
};

#define ORV_DEMOSAIC_ROUTINES_BAY8(f) false, f, nullptr
#define ORV_DEMOSAIC_ROUTINES_BAYn(f) true, nullptr, f
#define ORV_DEMOSAIC_MEMBER_ROW(SRC, OUT, METHOD, PHASE)                    \
    DemosaicMember{"OVC_" #SRC "_to_" #OUT "_" #METHOD "_" #PHASE,          \
                   ORV_FORMAT_##OUT & 0xFFu, ORV_BAYER_METHOD_##METHOD##_ID, \
                   ORV_BAYER_PHASE_##PHASE,                                 \
                   ORV_DEMOSAIC_ROUTINES_##SRC(                              \
                       OVC_##SRC##_to_##OUT##_##METHOD##_##PHASE)},
#define ORV_BAYER_METHOD_dup_ID ORV_BAYER_METHOD_DUP
#define ORV_BAYER_METHOD_ave_ID ORV_BAYER_METHOD_AVE
#define ORV_BAYER_METHOD_med_ID ORV_BAYER_METHOD_MED

inline constexpr DemosaicMember kDemosaicMembers[] = {
    ORV_BAYER_MEMBERS(ORV_DEMOSAIC_MEMBER_ROW)};

#undef ORV_BAYER_METHOD_med_ID
#undef ORV_BAYER_METHOD_ave_ID
#undef ORV_BAYER_METHOD_dup_ID
#undef ORV_DEMOSAIC_MEMBER_ROW
#undef ORV_DEMOSAIC_ROUTINES_BAYn
#undef ORV_DEMOSAIC_ROUTINES_BAY8

// The routine for a source class, output, method and phase, or null.
inline const DemosaicMember *find_member(bool n_bit, uint32_t output,
                                         uint32_t method, uint32_t phase) {
    for (const DemosaicMember &m : kDemosaicMembers)
        if (m.n_bit == n_bit && m.output == output && m.method == method &&
            m.phase == phase)
            return &m;
    return nullptr;
}

} // namespace bayer
} // namespace orv

#endif // ORVANE_BAYER_MEMBER_TABLE_H
