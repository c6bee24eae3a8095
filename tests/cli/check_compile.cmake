cmake_minimum_required(VERSION 3.25)
# vkpch compile: header words and listing, or the error with a caret.
include(${CMAKE_CURRENT_LIST_DIR}/run_vkpch.cmake)

vkpch(0 out compile -o i "(a|b)+c")
set(expected [=[magic=0x78456772 opts=i instructions=7 groups=2 lastLiteral=6 matchLimit=10000 format=1 kind=0
   0  CAPTURE link=1 body=3 capture=1
   1    CHAR 'a'
   2    ALT link=1 opts=i
   3    CHAR 'b'
   4  KET link=1 opts=i
   5  GREEDY 1..inf
   6  CHAR 'c' opts=i
]=])
if(NOT out STREQUAL expected)
  message(FATAL_ERROR "compile printed:\n${out}\nexpected:\n${expected}")
endif()

vkpch(2 out compile "ab{3,2}")
if(NOT out MATCHES "^vkpch: bad pattern at offset 5: quantifier [^\n]*\n  ab{3,2}\n       \\^\n$")
  message(FATAL_ERROR "compile error printed:\n${out}")
endif()
vkpch(2 out compile -o q a)
if(NOT out MATCHES "bad option string 'q': unknown option letter")
  message(FATAL_ERROR "option error printed:\n${out}")
endif()
vkpch(2 out compile)
message(STATUS "compile ok")
