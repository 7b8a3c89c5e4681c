# Test programs, and the ctest tests that run them: one for each of their *_test.cpp files, so that files run side by side
# and ctest names the one that failed. The list of them all, for ./dev test, goes to tests.txt in the build tree.

# list_test(<room> <file> <test> <target>...): what people call the test, what ctest calls it, and what it needs built.
function(list_test room file test)
  list(JOIN ARGN "," targets)
  set_property(GLOBAL APPEND_STRING PROPERTY TEST_LIST "${room}\t${file}\t${targets}\t${test}\n")
endfunction()

function(write_test_list)
  get_property(tests GLOBAL PROPERTY TEST_LIST)
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/tests.txt CONTENT "${tests}" @ONLY)
endfunction()

# add_test_program(<program> <room> <sources>...): a program whose tests need nothing but itself.
function(add_test_program program room)
  add_test_executable(${program} test_headers ${ARGN})
  add_file_tests(${program} "${ARGN}" ${room} "")
endfunction()

# add_test_executable(<program> <precompiled headers> <sources>...)
function(add_test_executable program headers)
  add_executable(${program} ${ARGN})
  target_link_libraries(${program} PRIVATE test_main)
  use_precompiled_headers(${headers} ${program})
endfunction()

# add_file_tests(<program> <sources> <room> <artifact> <argument>...): the ctest tests of an executable. A file without a
# single test case is a mistake.
function(add_file_tests program sources room artifact)
  foreach(source ${sources})
    if(source MATCHES "([a-z_]+)_test\\.cpp$")
      set(file ${CMAKE_MATCH_1})
      set(test "${room} ${file}")
      if(artifact)
        string(APPEND test ": ${artifact}")
      endif()
      add_test(NAME ${test} COMMAND ${program} ${ARGN} --source-file=*/${file}_test.cpp)
      set_tests_properties(${test} PROPERTIES FAIL_REGULAR_EXPRESSION "test cases: +0 ")
      list_test(${room} ${file} ${test} ${program})
    endif()
  endforeach()
endfunction()
