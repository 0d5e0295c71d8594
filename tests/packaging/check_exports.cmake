# Compares the dynamic symbols LIBRARY defines with the functions HEADERS
# declare ORV_API (default visibility), naming any missing on either side.
# The version script hides every other symbol (the sanitizers' and fuzzing
# coverage's too), so every build is held to the same list.
set(declared "")
foreach(header IN LISTS HEADERS)
  execute_process(COMMAND ${COMPILER} -E -P -I${INCLUDE_DIR} ${header}
                  OUTPUT_VARIABLE text RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "cannot preprocess ${header}")
  endif()
  string(REGEX MATCHALL "visibility *\\( *\"default\" *\\) *\\) *\\)[^(;]*\\("
         matches "${text}")
  foreach(m IN LISTS matches)
    string(REGEX MATCH "([A-Za-z_][A-Za-z0-9_]*)[ \t\r\n]*\\($" _ "${m}")
    list(APPEND declared ${CMAKE_MATCH_1})
  endforeach()
endforeach()
list(REMOVE_DUPLICATES declared)
list(SORT declared)

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
                OUTPUT_VARIABLE symbols RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "cannot list the symbols of ${LIBRARY}")
endif()
string(REPLACE "\n" ";" lines "${symbols}")
set(exported "")
foreach(line IN LISTS lines)
  if(line MATCHES "^([^ ]+) ")
    list(APPEND exported ${CMAKE_MATCH_1})
  endif()
endforeach()
list(SORT exported)

set(missing ${declared})
list(REMOVE_ITEM missing ${exported})
set(extra ${exported})
list(REMOVE_ITEM extra ${declared})
list(LENGTH declared n)
if(missing OR extra)
  message(FATAL_ERROR "exports of ${LIBRARY} differ from its headers\n"
          "declared but not exported: ${missing}\n"
          "exported but not declared: ${extra}")
endif()
message(STATUS "${n} exports match the headers")
