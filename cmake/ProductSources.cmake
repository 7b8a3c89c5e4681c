# The product's four rooms, whichever way they are built. A new file is found by itself.
file(GLOB PRODUCT_SOURCES CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/plugin/*.cpp
  ${CMAKE_SOURCE_DIR}/host/*.cpp
  ${CMAKE_SOURCE_DIR}/convert/*.cpp
  ${CMAKE_SOURCE_DIR}/spotlight/*.cpp)

# measure_product(<target>): the product's sources in this target count how often they ran, where that is asked for.
function(measure_product target)
  if(SPOTLIGHT_COVERAGE)
    set_source_files_properties(${PRODUCT_SOURCES} PROPERTIES
      COMPILE_OPTIONS "-fprofile-instr-generate;-fcoverage-mapping")
    target_link_options(${target} PRIVATE -fprofile-instr-generate)
  endif()
endfunction()
