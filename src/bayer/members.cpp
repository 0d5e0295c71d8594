// The 81 exported demosaic routines, one per row of the member list: each
// is demosaic<method, sample class, packer, phase> (demosaic.h) over the
// walk of its method (dup.h, ave.h, med.h).
#include "ave.h"
#include "dup.h"
#include "med.h"

#define ORV_BAYER_DEFINE_MEMBER(SRC, OUT, METHOD, PHASE)                    \
    extern "C" ORV_API ORV_BAYER_SIGNATURE(SRC, OUT, METHOD, PHASE) {       \
        using namespace orv::bayer::member_words;                           \
        return orv::bayer::demosaic<orv::bayer::ORV_BAYER_METHOD_TYPE_##METHOD, \
                                    SRC, OUT, PHASE>(source, destination,   \
                                                     ORV_BAYER_DEPTH_##SRC); \
    }

ORV_BAYER_MEMBERS(ORV_BAYER_DEFINE_MEMBER)
