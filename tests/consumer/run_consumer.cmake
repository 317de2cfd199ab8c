# Builds and runs tests/consumer against this source tree: through an
# install and find_package(vlkxs CONFIG), through add_subdirectory(), or
# through an install and pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGV}\n${out}\n${err}")
  endif()
endfunction()
if(MODE STREQUAL "pkg-config")
  # As the README tells it: install anywhere, point pkg-config at it, build
  # a C program with a plain compiler against the shared library.
  run(${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${WORK_DIR}/prefix)
  file(GLOB_RECURSE pc ${WORK_DIR}/prefix/*/vlkxs.pc)
  get_filename_component(pcdir ${pc} DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} ${pcdir})
  execute_process(COMMAND pkg-config --cflags --libs vlkxs OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE rc)
  execute_process(COMMAND pkg-config --variable=libdir vlkxs OUTPUT_VARIABLE libdir OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT rc EQUAL 0 OR NOT EXISTS ${libdir}/libvlkxs.so)
    message(FATAL_ERROR "pkg-config does not find the installed library: '${flags}', libdir '${libdir}'")
  endif()
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${C_COMPILER} ${SOURCE_DIR}/tests/consumer/consumer.c -o ${WORK_DIR}/consumer ${flags} -Wl,-rpath,${libdir})
  run(${WORK_DIR}/consumer)
  return()
endif()
if(MODE STREQUAL "find_package")
  run(${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${WORK_DIR}/prefix)
  run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/consumer -B ${WORK_DIR}/build -G ${GENERATOR}
      -DVLKXS_CONSUMER_MODE=find_package -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix)
else()
  run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/consumer -B ${WORK_DIR}/build -G ${GENERATOR}
      -DVLKXS_CONSUMER_MODE=add_subdirectory -DVLKXS_SOURCE_DIR=${SOURCE_DIR})
endif()
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${WORK_DIR}/build/consumer)
if(EXISTS ${WORK_DIR}/build/consumer_shared)
  run(${WORK_DIR}/build/consumer_shared)
endif()
