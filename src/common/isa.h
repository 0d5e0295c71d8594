// The instruction set a source file is compiled for, and the namespace its
// kernel code lives in.
//
// The row and line templates are shared by the plain files and by the
// SIMD files, which compile them again with their own target flags. Every
// header that defines such code puts it in orv::ORV_ISA, an inline
// namespace named after the file's instruction set (CMake defines ORV_ISA
// for the SIMD files; everything else is `plain`). So no function compiled
// for a newer instruction set shares a symbol with a plain one, and the
// linker can never hand a plain caller code that an older CPU cannot run.
#ifndef ORVANE_COMMON_ISA_H
#define ORVANE_COMMON_ISA_H

#ifndef ORV_ISA
#define ORV_ISA plain
#endif

namespace orv {
inline namespace ORV_ISA {}
} // namespace orv

#endif // ORVANE_COMMON_ISA_H
