# Installs the build into a scratch prefix, then builds and runs the README
# example against it twice: through find_package(OrvaneImage) and through
# pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out
                  ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(f include/orvaneimage.h include/orvane/buffer.h
          lib/liborvaneimage.so.1 lib/liborvanebuffer.so.1
          lib/cmake/OrvaneImage/OrvaneImageConfig.cmake
          lib/pkgconfig/orvaneimage.pc)
  if(NOT EXISTS ${prefix}/${f})
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()

run(${CMAKE_COMMAND} -S ${EXAMPLE_DIR} -B ${WORK_DIR}/cmake-build
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_C_COMPILER=${C_COMPILER})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run(${WORK_DIR}/cmake-build/hello_orvane)

set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs orvaneimage
                OUTPUT_VARIABLE flags RESULT_VARIABLE rc
                OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "pkg-config does not know orvaneimage")
endif()
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${C_COMPILER} ${EXAMPLE_DIR}/hello_orvane.c ${flags}
    -Wl,-rpath,${prefix}/lib -o ${WORK_DIR}/hello_pkgconfig)
run(${WORK_DIR}/hello_pkgconfig)
