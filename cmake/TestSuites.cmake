# add_test_suites(TARGET PROPERTIES ...): one entry of ctest for every suite of a GoogleTest program, as the program
# itself lists them when ctest starts. For tests of which each would start something dear anew in a process of its own.

function(add_test_suites target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "PROPERTIES")
  set(entries ${CMAKE_CURRENT_BINARY_DIR}/${target}_suites.cmake)
  file(GENERATE OUTPUT ${entries} CONTENT "
set(program [==[$<TARGET_FILE:${target}>]==])
set(properties [==[${arg_PROPERTIES}]==])
include([==[${CMAKE_CURRENT_FUNCTION_LIST_DIR}/ListTestSuites.cmake]==])
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${entries})
endfunction()
