# add_python_tests(<prefix> <file>...): one ctest test for each file of Python unit tests in the current folder. They run
# with Debian's Python, once the targets in the list PYTHON_TESTS_NEED are built, and find the programs of
# platform/macho, the tree and the finished library by themselves.
function(add_python_tests prefix)
  foreach(file ${ARGN})
    get_filename_component(name ${file} NAME_WE)
    string(REPLACE "_" " " name ${name})
    string(REGEX REPLACE "^test " "" name ${name})
    add_test(NAME "${prefix}: ${name}"
      COMMAND /usr/bin/python3 -B -m unittest --verbose ${file}
      WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
    string(REPLACE " " "_" subject ${name})
    list_test(${prefix} ${subject} "${prefix}: ${name}" ${PYTHON_TESTS_NEED})
    set_tests_properties("${prefix}: ${name}" PROPERTIES ENVIRONMENT
      "PYTHONPATH=${CMAKE_SOURCE_DIR}/platform/macho:${CMAKE_SOURCE_DIR}/tests/support;SOURCE_TREE=${CMAKE_SOURCE_DIR};DYLIB=${SPOTLIGHT_DYLIB}")
  endforeach()
endfunction()
