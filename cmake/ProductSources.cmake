# The product's four rooms, whichever way they are built. A new file is found by itself.
file(GLOB PRODUCT_SOURCES CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/plugin/*.cpp
  ${CMAKE_SOURCE_DIR}/host/*.cpp
  ${CMAKE_SOURCE_DIR}/convert/*.cpp
  ${CMAKE_SOURCE_DIR}/spotlight/*.cpp)
