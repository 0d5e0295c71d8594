# Kernel files per instruction set. Each is compiled with its own target
# flags and ORV_ISA naming the namespace its code lives in, so nothing
# compiled for a newer instruction set is shared with the plain code; the
# plain code chooses among them at run time. With ORV_SIMD off only the
# plain kernels are built.
set(ORV_ISA_FLAGS_sse2 -msse2)
set(ORV_ISA_FLAGS_avx2 -mavx2)
set(ORV_ISA_FLAGS_avx512 -mavx2 -mavx512f -mavx512bw -mavx512vl)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 takes the lanes that its own AVX-512 intrinsics leave undefined
  # on purpose for uninitialized values, inside its headers.
  list(APPEND ORV_ISA_FLAGS_avx512 -Wno-uninitialized -Wno-maybe-uninitialized)
endif()

if(ORV_SIMD)
  target_compile_definitions(orvane_kernels PUBLIC ORV_SIMD_TWINS=1)
endif()

# orv_simd_sources(TARGET ISA FILE [ISA FILE]...)
function(orv_simd_sources target)
  if(NOT ORV_SIMD)
    return()
  endif()
  set(args ${ARGN})
  while(args)
    list(POP_FRONT args isa file)
    get_filename_component(file ${file} ABSOLUTE)
    target_sources(${target} PRIVATE ${file})
    set_source_files_properties(${file} TARGET_DIRECTORY ${target} PROPERTIES
      COMPILE_OPTIONS "${ORV_ISA_FLAGS_${isa}}"
      COMPILE_DEFINITIONS ORV_ISA=${isa})
  endwhile()
endfunction()
