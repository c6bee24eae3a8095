cmake_minimum_required(VERSION 3.25)
# vkpch replace end to end on what the differential runs against perl -pe do
# not reach: the library's template rules, lines longer than the tool's
# output buffer, editing in place, exit statuses and the messages for a bad
# pattern or template.
include(${CMAKE_CURRENT_LIST_DIR}/run_vkpch.cmake)

file(READ ${SAMPLE} text)

# Groups swapped, a group that did not take part, the backslash that only
# cuts the text, an empty line and a last line without a line feed.
file(WRITE ${WORK_DIR}/dates.txt "due 2024-01-31, paid 2024-02-02\n\nnone\n7-8")
vkpch(0 out replace -g "(\\d{4})?-?(\\d\\d?)-(\\d\\d?)" "$3.$2\\.$1" ${WORK_DIR}/dates.txt)
expect_output("replace -g dates" "${out}" "due 31.01.2024, paid 02.02.2024\n\nnone\n8.7.")
vkpch(0 out replace -g "^" "> " ${WORK_DIR}/dates.txt)
expect_output("replace -g ^ on every line" "${out}" "> due 2024-01-31, paid 2024-02-02\n> \n> none\n> 7-8")

# Longer than the 64 KiB output buffer: the text before the match does not
# fit, and the replaced line is written in several pieces.
string(REPEAT "a" 70000 long)
file(WRITE ${WORK_DIR}/long.txt "${long}b\n")
vkpch(0 out replace b "<$&>" ${WORK_DIR}/long.txt)
expect_output("replace long prefix" "${out}" "${long}<b>\n")
string(REPEAT "ab " 30000 many)
file(WRITE ${WORK_DIR}/many.txt "${many}\n")
vkpch(0 out replace -g "a(b) " "a[$1]a " ${WORK_DIR}/many.txt)
string(REPEAT "a[b]a " 30000 want)
expect_output("replace 30000 matches in one line" "${out}" "${want}\n")

# In place: the result replaces the file, the original kept under the
# suffix; a missing file is reported and the others are still edited.
file(WRITE ${WORK_DIR}/edit.txt "one two\nthree")
vkpch(2 out replace --in-place=.orig -g "(\\w+)" "<$1>" ${WORK_DIR}/missing.txt ${WORK_DIR}/edit.txt)
file(READ ${WORK_DIR}/edit.txt edited)
file(READ ${WORK_DIR}/edit.txt.orig kept)
expect_output("replace --in-place" "${edited}|${kept}|${out}"
  "<one> <two>\n<three>|one two\nthree|vkpch: ${WORK_DIR}/missing.txt: No such file or directory\n")
file(GLOB leftovers ${WORK_DIR}/edit.txt.vkpch-*)
expect_output("temporary files left" "${leftovers}" "")

vkpch(1 out replace xyz "q" ${SAMPLE})
expect_output("replace without a match" "${out}" "${text}")
vkpch(2 out replace "a(b" "x" ${SAMPLE})
if(NOT out MATCHES "bad pattern at offset 3: [^\n]*\n  a\\(b\n     \\^\n$")
  message(FATAL_ERROR "bad pattern message:\n${out}")
endif()
vkpch(2 out replace "a" "x$&y$0" ${SAMPLE})
if(NOT out MATCHES "bad template at offset 4: [^\n]*\n  x\\$&y\\$0\n      \\^\n$")
  message(FATAL_ERROR "bad template message:\n${out}")
endif()
vkpch(2 out replace -q a b ${SAMPLE})
vkpch(2 out replace a)
message(STATUS "cli replace ok")
