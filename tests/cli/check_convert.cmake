cmake_minimum_required(VERSION 3.25)
# vkpch convert end to end: UTF-8 -> UTF-16 (both byte orders) -> UTF-8 is
# the identity on well-formed text larger than the tool's chunk, so that
# chunk boundaries cut multi-byte sequences and surrogate pairs; a known
# conversion byte for byte; standard input; one-line errors with exit 2.
include(${CMAKE_CURRENT_LIST_DIR}/run_vkpch.cmake)

# Runs the tool with stdout to a file; fails unless it exits 0.
function(convert out_file)
  execute_process(COMMAND ${EMULATOR} ${VKPCH} convert ${ARGN} OUTPUT_FILE ${out_file} RESULT_VARIABLE rc
    ERROR_VARIABLE err ${STDIN})
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "vkpch convert ${ARGN}: exit ${rc}\n${err}")
  endif()
endfunction()

# About 200 KiB of text in four scripts with a supplementary character.
set(line "The keeper's log — Καλημέρα κόσμε — Привет, мир — 東京都の灯台 — 🚀 end of line\n")
set(text "")
foreach(i RANGE 1 2200)
  string(APPEND text "${i} ${line}")
endforeach()
# The first 🚀 straddles the 64 KiB chunk boundary as a surrogate pair in
# UTF-16, the second as a four-byte sequence in UTF-8.
string(REPEAT "x" 32767 run1)
string(REPEAT "x" 32763 run2)
file(WRITE ${WORK_DIR}/convert_in.txt "${run1}🚀${run2}🚀${text}")

foreach(order le be)
  convert(${WORK_DIR}/convert_${order}.bin --to utf-16${order} ${WORK_DIR}/convert_in.txt)
  convert(${WORK_DIR}/convert_${order}.txt --from utf-16${order} --to utf-8 ${WORK_DIR}/convert_${order}.bin)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK_DIR}/convert_in.txt ${WORK_DIR}/convert_${order}.txt
    RESULT_VARIABLE differ)
  if(differ)
    message(FATAL_ERROR "UTF-8 -> UTF-16${order} -> UTF-8 changed the text")
  endif()
endforeach()
# UTF-16LE to UTF-16BE swaps every unit: the two files differ but convert back alike.
convert(${WORK_DIR}/convert_swap.bin --from utf-16le --to utf-16be ${WORK_DIR}/convert_le.bin)
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK_DIR}/convert_swap.bin ${WORK_DIR}/convert_be.bin
  RESULT_VARIABLE differ)
if(differ)
  message(FATAL_ERROR "UTF-16LE -> UTF-16BE differs from UTF-8 -> UTF-16BE")
endif()

# "A€😀" and an ill-formed byte, from standard input.
file(WRITE ${WORK_DIR}/convert_small.txt "A€😀")
string(ASCII 255 byte_ff)
file(APPEND ${WORK_DIR}/convert_small.txt "${byte_ff}")
set(STDIN INPUT_FILE ${WORK_DIR}/convert_small.txt)
convert(${WORK_DIR}/convert_small.bin --to utf-16le)
file(READ ${WORK_DIR}/convert_small.bin hex HEX)
expect_output("convert --to utf-16le" "${hex}" "4100ac203dd800deff00")
convert(${WORK_DIR}/convert_small_be.bin --to utf-16be -)
file(READ ${WORK_DIR}/convert_small_be.bin hex HEX)
expect_output("convert --to utf-16be -" "${hex}" "004120acd83dde0000ff")
unset(STDIN)

vkpch(2 out convert --from latin-1 ${WORK_DIR}/convert_small.txt)
if(NOT out MATCHES "^vkpch: [^\n]*latin-1[^\n]*\n$")
  message(FATAL_ERROR "bad encoding message: ${out}")
endif()
vkpch(2 out convert --bogus)
vkpch(2 out convert --to)
vkpch(2 out convert ${WORK_DIR}/no-such-file.txt)
if(NOT out MATCHES "^vkpch: [^\n]*no-such-file[^\n]*\n$")
  message(FATAL_ERROR "missing file message: ${out}")
endif()
message(STATUS "cli convert ok")
