# Read by ctest: adds one entry for every suite of `program`, with `properties`. See TestSuites.cmake.

if(NOT EXISTS ${program})
  add_test(${program}_NOT_BUILT ${program})
  return()
endif()
execute_process(COMMAND ${program} --gtest_list_tests
  OUTPUT_VARIABLE listed ERROR_VARIABLE complaints RESULT_VARIABLE result TIMEOUT 60)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${program} does not list its tests: ${result}\n${complaints}")
endif()
# A suite stands at the begin of a line and ends in a dot; its tests are indented.
string(REGEX MATCHALL "(^|\n)[^ \n]+\\." suites "${listed}")
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "^\n|\\.$" "" suite "${suite}")
  add_test("${suite}" "${program}" "--gtest_filter=${suite}.*")
  set_tests_properties("${suite}" PROPERTIES ${properties})
endforeach()
