# Fails when an object file compiled for an instruction set defines a
# global or weak symbol outside orv::<that instruction set>: such a symbol
# (an inline function or template shared with the plain code) could be
# picked by the linker for plain callers and run on a CPU without it.
set(leaks "")
set(checked 0)
foreach(object IN LISTS OBJECTS)
  if(NOT object MATCHES "_(sse2|avx2|avx512)\\.cpp\\.o$")
    continue()
  endif()
  set(isa ${CMAKE_MATCH_1})
  # The namespace as it appears in a mangled name: 3orv4avx2.
  string(LENGTH ${isa} length)
  set(namespace "3orv${length}${isa}")
  math(EXPR checked "${checked} + 1")
  execute_process(COMMAND ${NM} --defined-only ${object}
                  OUTPUT_VARIABLE symbols RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "cannot list the symbols of ${object}")
  endif()
  string(REPLACE "\n" ";" lines "${symbols}")
  foreach(line IN LISTS lines)
    # Upper-case types are global or weak. Allowed toolchain globals:
    # AddressSanitizer's marker of each global, the 32-bit PIC thunks and
    # the exception-handling personality's reference.
    if(line MATCHES "^[0-9a-fA-F]* [A-Z] (.*)$")
      set(name "${CMAKE_MATCH_1}")
      if(NOT name MATCHES "^_Z[A-Z]*N?${namespace}"
         AND NOT name MATCHES "^__odr_asan\\._Z[A-Z]*N?${namespace}"
         AND NOT name MATCHES "^__x86\\.get_pc_thunk\\."
         AND NOT name STREQUAL "DW.ref.__gxx_personality_v0")
        list(APPEND leaks "${object}: ${name}")
      endif()
    endif()
  endforeach()
endforeach()
if(checked EQUAL 0)
  message(FATAL_ERROR "no object file of an instruction set was given")
endif()
if(leaks)
  string(REPLACE ";" "\n  " leaks "${leaks}")
  message(FATAL_ERROR "symbols shared beyond their instruction set:\n  ${leaks}")
endif()
message(STATUS "${checked} instruction-set object files keep their symbols to themselves")
