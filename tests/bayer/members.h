// Every demosaic routine the library exports, taken from the library's own
// member list so that a test iterating this table cannot miss one.
#ifndef ORVANE_TESTS_BAYER_MEMBERS_H
#define ORVANE_TESTS_BAYER_MEMBERS_H

#include "bayer/reference_model.h"

#include <orvaneimage.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace bayer_test {

using Bay8Routine = ORV_STATUS (*)(OFS_HANDLE, OFS_HANDLE);
using BaynRoutine = ORV_STATUS (*)(OFS_HANDLE, OFS_HANDLE, uint32_t);

struct Member {
    bayer_model::Kind kind;
    const char *name;
    Bay8Routine bay8; // set for BAY8 members
    BaynRoutine bayn; // set for BAYn members
};

#define ORV_TEST_ROUTINE_BAY8(f) f, nullptr
#define ORV_TEST_ROUTINE_BAYn(f) nullptr, f
#define ORV_TEST_MEMBER(source, output, method, phase)                       \
    Member{{bayer_model::Source::source, bayer_model::Output::output,         \
            bayer_model::Method::method, bayer_model::Phase::phase},          \
           "OVC_" #source "_to_" #output "_" #method "_" #phase,              \
           ORV_TEST_ROUTINE_##source(                                         \
               OVC_##source##_to_##output##_##method##_##phase)},

inline const std::vector<Member> &members() {
    static const std::vector<Member> all = {ORV_BAYER_MEMBERS(ORV_TEST_MEMBER)};
    return all;
}

#undef ORV_TEST_MEMBER
#undef ORV_TEST_ROUTINE_BAYn
#undef ORV_TEST_ROUTINE_BAY8

inline std::vector<Member> members_of(bayer_model::Method method) {
    std::vector<Member> out;
    for (const Member &m : members())
        if (m.kind.method == method) out.push_back(m);
    return out;
}

inline const Member &member(const std::string &name) {
    for (const Member &m : members())
        if (name == m.name) return m;
    throw std::invalid_argument("no demosaic routine " + name);
}

inline ORV_STATUS call(const Member &m, OFS_HANDLE source,
                       OFS_HANDLE destination, uint32_t depth) {
    return m.bay8 ? m.bay8(source, destination)
                  : m.bayn(source, destination, depth);
}

} // namespace bayer_test

#endif // ORVANE_TESTS_BAYER_MEMBERS_H
