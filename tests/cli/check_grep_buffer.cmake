cmake_minimum_required(VERSION 3.25)
# vkpch grep searches many lines at once where a pattern allows it; its output
# and exit status must equal those of the line-by-line search
# (VKPCH_GREP_LINES=1) on a text with empty lines, a long line, UTF-8 and a
# last line without a line feed, for patterns of both kinds.
include(${CMAKE_CURRENT_LIST_DIR}/run_vkpch.cmake)

file(READ ${SAMPLE} sample)
string(REPEAT "keeper's log (a lamp) x@example.org 10.0.0.1 2019-06-30 " 400 long)
set(text "${sample}\n\n${long}\nΚαλημέρα κόσμε the\n \n${sample}The end without a line feed")
file(WRITE ${WORK_DIR}/grep_buffer.txt "${text}")

set(patterns "the" "keeper|lamp|log" "[\\w.+-]+@[\\w-]+\\.[\\w.-]+" "\\b\\w+ing\\b" "\\p{Greek}+" "a*"
             "(\\w+) (\\w+)" "^The" "\\s+the" "[^a-z]+" ".*lamp" "(?<=the )\\w+")
set(flag_sets "-n" "-c" "-on" "-ic")
if(EMULATOR)  # each run starts the emulator: a few cases of each kind
  set(patterns "the" "[\\w.+-]+@[\\w-]+\\.[\\w.-]+" "^The")
  set(flag_sets "-n" "-on")
endif()
foreach(pattern IN LISTS patterns)
  foreach(flags IN LISTS flag_sets)
    foreach(mode 0 1)
      execute_process(COMMAND ${CMAKE_COMMAND} -E env VKPCH_GREP_LINES=${mode} ${EMULATOR} ${VKPCH} grep ${flags}
        ${pattern} ${WORK_DIR}/grep_buffer.txt RESULT_VARIABLE rc${mode} OUTPUT_VARIABLE out${mode} ERROR_VARIABLE err${mode})
    endforeach()
    if(NOT rc0 STREQUAL rc1 OR NOT out0 STREQUAL out1 OR NOT err0 STREQUAL err1)
      message(FATAL_ERROR "grep ${flags} '${pattern}': whole-buffer search printed\n${out0}${err0}(exit ${rc0})\n"
                          "line by line:\n${out1}${err1}(exit ${rc1})")
    endif()
    if(rc0 GREATER 1)
      message(FATAL_ERROR "grep ${flags} '${pattern}' failed: ${err0}")
    endif()
  endforeach()
endforeach()
