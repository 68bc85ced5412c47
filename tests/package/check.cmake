# Installs the built vek into a scratch prefix, then builds and runs a
# consumer with find_package and checks the pkg-config file. A sanitized
# vek needs the sanitizers' runtime in the consumer's link (LINK_FLAGS).
set(prefix "${WORK_DIR}/prefix")
file(REMOVE_RECURSE "${WORK_DIR}")
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()
run(${CMAKE_COMMAND} --install "${VEK_BINARY_DIR}" --prefix "${prefix}")
run(${CMAKE_COMMAND} -S "${CONSUMER_SOURCE}" -B "${WORK_DIR}/consumer" -G Ninja
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
    "-DCMAKE_EXE_LINKER_FLAGS=${LINK_FLAGS}")
run(${CMAKE_COMMAND} --build "${WORK_DIR}/consumer")
run("${WORK_DIR}/consumer/consumer")
message(STATUS "${last_output}")
set(ENV{PKG_CONFIG_PATH} "${prefix}/lib/pkgconfig:${prefix}/lib/x86_64-linux-gnu/pkgconfig")
run(pkg-config --cflags --libs vek)
if(NOT last_output MATCHES "-lvek")
  message(FATAL_ERROR "pkg-config gave: ${last_output}")
endif()
