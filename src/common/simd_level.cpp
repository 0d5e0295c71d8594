// What the CPU offers (CPUID), what the operating system saves across
// context switches (XGETBV), and the cap from ORVANE_SIMD, combined once.
#include "simd_level.h"

#include <orvane/version.h>

#include <cpuid.h>
#include <cstdlib>
#include <cstring>

namespace orv {
namespace {

struct CpuidRegisters {
    unsigned a, b, c, d;
};

CpuidRegisters cpuid(unsigned leaf, unsigned subleaf) {
    CpuidRegisters r{0, 0, 0, 0};
    if (static_cast<unsigned>(__get_cpuid_max(0, nullptr)) >= leaf)
        __cpuid_count(leaf, subleaf, r.a, r.b, r.c, r.d);
    return r;
}

// The register state the operating system enables (XCR0). Only asked
// when CPUID says XGETBV exists.
uint64_t enabled_state() {
    unsigned lo, hi;
    __asm__ volatile("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
    return (uint64_t(hi) << 32) | lo;
}

constexpr unsigned bit(unsigned n) { return 1u << n; }

SimdLevel cpu_level() {
    const CpuidRegisters basic = cpuid(1, 0);
    if (!(basic.d & bit(26))) return SimdLevel::none; // SSE2
    // AVX state needs OSXSAVE and the OS saving XMM and YMM registers.
    const bool osxsave = basic.c & bit(27);
    const bool avx = basic.c & bit(28);
    if (!osxsave || !avx) return SimdLevel::sse2;
    const uint64_t state = enabled_state();
    if ((state & 0x6) != 0x6) return SimdLevel::sse2;
    const CpuidRegisters extended = cpuid(7, 0);
    if (!(extended.b & bit(5))) return SimdLevel::sse2; // AVX2
    // AVX-512 F, BW and VL, with opmask and ZMM state enabled.
    const unsigned avx512 = bit(16) | bit(30) | bit(31);
    if ((extended.b & avx512) != avx512 || (state & 0xE0) != 0xE0)
        return SimdLevel::avx2;
    return SimdLevel::avx512;
}

// ORVANE_SIMD names the highest level allowed; unset or unknown allows all.
SimdLevel cap_from_environment() {
    const char *cap = std::getenv("ORVANE_SIMD");
    if (cap == nullptr) return SimdLevel::avx512;
    for (unsigned level = 0; level < kSimdLevels; ++level)
        if (std::strcmp(cap, simd_level_name(SimdLevel(level))) == 0)
            return SimdLevel(level);
    return SimdLevel::avx512;
}

// A build with the plain kernels only runs them, whatever the CPU has.
#if ORV_SIMD_TWINS
constexpr bool kSimdKernelsBuilt = true;
#else
constexpr bool kSimdKernelsBuilt = false;
#endif

SimdLevel choose_level() {
    const SimdLevel cpu = cpu_level();
    const SimdLevel cap =
        kSimdKernelsBuilt ? cap_from_environment() : SimdLevel::none;
    return cap < cpu ? cap : cpu;
}

} // namespace

SimdLevel simd_level() {
    static const SimdLevel level = choose_level();
    return level;
}

const char *simd_level_name(SimdLevel level) {
    static const char *const names[kSimdLevels] = {"none", "sse2", "avx2",
                                                   "avx512"};
    return names[static_cast<unsigned>(level)];
}

} // namespace orv

extern "C" ORV_API const char *OVC_InstructionSet(void) {
    return orv::simd_level_name(orv::simd_level());
}
