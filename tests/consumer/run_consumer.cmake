# Builds and runs tests/consumer against this source tree, either through an
# install and find_package(vlkxs CONFIG) or through add_subdirectory().
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGV}\n${out}\n${err}")
  endif()
endfunction()
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
