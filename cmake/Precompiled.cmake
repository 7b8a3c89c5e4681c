# Headers are read by the compiler once instead of once for each source: those that nearly every source includes are
# precompiled, and the sources of some targets are compiled several at a time, so that what their headers make of
# templates is made once, too. A compiler cache does better without: it could not share what was compiled with the
# precompiled headers of another tree. Sources must still include what they use, which ./dev lint sees to.
option(SPOTLIGHT_PRECOMPILE "Compile with precompiled headers, and some sources together" ON)
if(CMAKE_CXX_COMPILER_LAUNCHER)
  set(SPOTLIGHT_PRECOMPILE OFF)
endif()

# add_precompiled_headers(<name> <header>...): for targets that are compiled with the options of the current folder.
function(add_precompiled_headers name)
  if(SPOTLIGHT_PRECOMPILE)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "// Nothing but its headers.\n")
    add_library(${name} OBJECT ${source})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE platform_headers)
    target_precompile_headers(${name} PRIVATE ${ARGN})
  endif()
endfunction()

# use_precompiled_headers(<name> <target>...)
function(use_precompiled_headers name)
  if(SPOTLIGHT_PRECOMPILE)
    foreach(target ${ARGN})
      target_precompile_headers(${target} REUSE_FROM ${name})
      # The name that CMake defines for a shared library would make it another compilation.
      set_target_properties(${target} PROPERTIES DEFINE_SYMBOL "")
    endforeach()
  endif()
endfunction()

# compile_together(<number> <target>...): so many sources at a time. Names that a source keeps to itself must then be its
# own in the whole target.
function(compile_together number)
  if(SPOTLIGHT_PRECOMPILE)
    set_target_properties(${ARGN} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${number})
  endif()
endfunction()
