cmake_minimum_required(VERSION 3.25)
# Installs the build into a fresh prefix, then builds and runs a consumer
# against it twice: through find_package(vkpch) and through pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  set(run_output "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/consumer -B ${WORK_DIR}/cmake-consumer -G Ninja
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_RPATH=${prefix}/lib)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-consumer)
run(${WORK_DIR}/cmake-consumer/consumer)
if(NOT run_output MATCHES "8.2.3")
  message(FATAL_ERROR "find_package consumer printed: ${run_output}")
endif()
run(${WORK_DIR}/cmake-consumer/consumer_cpp)
if(NOT run_output STREQUAL "from 31/01/2024 to 29/02/2024\n")
  message(FATAL_ERROR "C++ consumer printed: ${run_output}")
endif()

set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
run(pkg-config --cflags --libs vkpch)
string(STRIP "${run_output}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${C_COMPILER} ${SOURCE_DIR}/consumer/main.c ${flags} -Wl,-rpath,${prefix}/lib -o ${WORK_DIR}/pc-consumer)
run(${WORK_DIR}/pc-consumer)
message(STATUS "installed tree serves find_package and pkg-config consumers")
