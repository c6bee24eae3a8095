cmake_minimum_required(VERSION 3.25)
# vkpch grep end to end on what the differential runs against GNU grep do not
# reach: the library's own options, UTF-8 subjects, long lines of matches,
# messages and exit statuses, the help text.
include(${CMAKE_CURRENT_LIST_DIR}/run_vkpch.cmake)

vkpch(0 out grep -c --extended "l a m p  # spaces and comments are dropped" ${SAMPLE})
expect_output("grep -c --extended" "${out}" "1\n")
vkpch(0 out grep -c keeper ${SAMPLE} ${SAMPLE})
expect_output("grep -c with two files" "${out}" "${SAMPLE}:2\n${SAMPLE}:2\n")

# UTF-8 subjects, and a last line without a line feed: the word boundary
# behind it reads the byte the tool puts there.
file(WRITE ${WORK_DIR}/utf8.txt "Καλημέρα κόσμε, hello\nnothing here\nend")
vkpch(0 out grep -o "\\p{Greek}+" ${WORK_DIR}/utf8.txt)
expect_output("grep -o \\p{Greek}+" "${out}" "Καλημέρα\nκόσμε\n")
vkpch(0 out grep -n "d\\b" ${WORK_DIR}/utf8.txt)
expect_output("grep -n d\\b" "${out}" "3:end\n")

# More matches on one line than the tool's first record array holds.
string(REPEAT "ab " 150 many)
file(WRITE ${WORK_DIR}/many.txt "${many}\n")
string(REPEAT "ab\n" 150 expected)
vkpch(0 out grep -o "a(b)" ${WORK_DIR}/many.txt)
expect_output("grep -o on 150 matches in a line" "${out}" "${expected}")

vkpch(1 out grep "no such words" ${SAMPLE})
expect_output("grep without a match" "${out}" "")
vkpch(2 out grep "ab(c" ${SAMPLE})
if(NOT out MATCHES "bad pattern at offset 4: unmatched parenthesis[^\n]*\n  ab\\(c\n      \\^\n$")
  message(FATAL_ERROR "bad pattern message:\n${out}")
endif()
vkpch(0 out grep -q the ${SAMPLE}.missing ${SAMPLE})
vkpch(2 out grep -E the ${SAMPLE})
vkpch(2 out grep)
vkpch(2 out grep the ${SAMPLE}.missing)
# Help and the manual page come from one text.
vkpch(0 out grep --help)
vkpch(0 man help --man)
string(FIND "${man}" "\\-\\-files\\-without\\-match" at)
if(NOT out MATCHES "^Usage: vkpch grep .*--files-without-match" OR at LESS 0)
  message(FATAL_ERROR "grep --help or the manual page lacks an option:\n${out}")
endif()
message(STATUS "cli grep ok")
