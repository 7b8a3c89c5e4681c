# What every target is compiled with: 32-bit Intel code, C++20, warnings as errors, and sanitizers where the preset asks for them.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

option(SPOTLIGHT_SANITIZE "Build with AddressSanitizer, UndefinedBehaviorSanitizer and leak checks" OFF)
option(SPOTLIGHT_FUZZ "Build code that tells a fuzzer where it was" OFF)

# All alike, programs too, so that they can share precompiled headers.
add_compile_options(-m32 -msse2 -mfpmath=sse -fno-omit-frame-pointer -fPIC)
set(SPOTLIGHT_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Werror)
add_compile_options(${SPOTLIGHT_WARNINGS})
add_link_options(-m32 -fuse-ld=lld-13)

if(SPOTLIGHT_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined)
  # The host and the plugin each state the types of their calls for themselves, so these never match by name.
  add_compile_options(-fno-sanitize=function)
  add_link_options(-fsanitize=address,undefined)
endif()

if(SPOTLIGHT_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
