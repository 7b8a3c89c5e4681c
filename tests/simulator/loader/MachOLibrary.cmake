# add_macho_library(<target> <source> <import lists>): an i386 Mach-O library from one source with the entry point of a
# plugin, made in the way in which the shipping library is (platform/macho says why each step is there). Its imports
# stand on the lists of the folder, and on those of the C library and the C++ runtime. <target>_FILE is where it goes.
find_program(PYTHON3 python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
find_program(MACHO_LINKER ld64.lld.darwinold-13 REQUIRED)
find_program(MACHO_NM llvm-nm-14 REQUIRED)
find_path(LIBCXX_HEADERS type_traits PATHS /usr/lib/llvm-14/include/c++/v1 NO_DEFAULT_PATH REQUIRED)

function(add_macho_library target source own_imports)
  set(tools ${CMAKE_SOURCE_DIR}/platform/macho)
  set(python ${PYTHON3} -B)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target})
  set(imports ${folder}/imports)
  file(MAKE_DIRECTORY ${imports})
  file(GLOB own_lists CONFIGURE_DEPENDS ${own_imports}/*.txt)
  set(lists)
  foreach(list ${CMAKE_SOURCE_DIR}/platform/imports/libSystem.txt
          ${CMAKE_SOURCE_DIR}/platform/imports/libstdc++.txt ${own_lists})
    get_filename_component(name ${list} NAME)
    configure_file(${list} ${imports}/${name} COPYONLY)
    list(APPEND lists ${imports}/${name})
  endforeach()

  set(target_flags -target i386-apple-macosx10.5)
  set(link_flags -arch i386 -dylib -macosx_version_min 10.6 -sdk_version 10.6)
  set(stubs)
  foreach(list ${lists})
    get_filename_component(name ${list} NAME_WE)
    set(stub ${folder}/${name})
    file(STRINGS ${list} install_name REGEX "^library ")
    string(REPLACE "library " "" install_name ${install_name})
    add_custom_command(OUTPUT ${stub}.dylib
      COMMAND ${python} ${tools}/stubs.py ${list} ${stub}.s
      COMMAND ${CMAKE_CXX_COMPILER} ${target_flags} -c ${stub}.s -o ${stub}.o
      COMMAND ${MACHO_LINKER} ${link_flags} -install_name ${install_name} ${stub}.o ${stubs} -o ${stub}.dylib
      DEPENDS ${list} ${stubs} ${tools}/stubs.py ${tools}/imports.py VERBATIM)
    list(APPEND stubs ${stub}.dylib)
  endforeach()

  set(unit ${folder}/unit)
  add_custom_command(OUTPUT ${unit}.dylib
    COMMAND ${CMAKE_CXX_COMPILER} ${target_flags} -std=c++20 -O2 -fvisibility=hidden -fno-stack-protector
      -fno-threadsafe-statics -fno-zero-initialized-in-bss -nostdinc++ -nostdlibinc -D_LIBCPP_DISABLE_AVAILABILITY -D_LIBCPP_HAS_NO_THREADS
      -D_LIBCPP_HAS_NO_LOCALIZATION -D_LIBCPP_HAS_NO_WIDE_CHARACTERS -I${CMAKE_SOURCE_DIR}
      -isystem ${LIBCXX_HEADERS} -isystem ${CMAKE_SOURCE_DIR}/platform/libc
      -MD -MT ${unit}.dylib -MF ${unit}.d -S ${CMAKE_CURRENT_SOURCE_DIR}/${source} -o ${unit}.compiled.s
    COMMAND ${python} ${tools}/rewrite.py --imports ${imports} ${unit}.compiled.s ${unit}.s
    COMMAND ${CMAKE_CXX_COMPILER} ${target_flags} -c ${unit}.s -o ${unit}.o
    COMMAND ${python} ${tools}/thunks.py --imports ${imports} --nm ${MACHO_NM} --output ${unit}.thunks.s ${unit}.o
    COMMAND ${CMAKE_CXX_COMPILER} ${target_flags} -c ${unit}.thunks.s -o ${unit}.thunks.o
    COMMAND ${MACHO_LINKER} ${link_flags} -install_name /${target}.dylib -exported_symbol _REALPluginMain -rpath a-UUID-here
      ${unit}.o ${unit}.thunks.o ${stubs} -o ${unit}.linked.dylib
    COMMAND ${python} ${tools}/finish.py --imports ${imports} --export _REALPluginMain
      ${unit}.linked.dylib ${unit}.dylib
    DEPENDS ${source} ${stubs} ${tools}/rewrite.py ${tools}/thunks.py ${tools}/finish.py ${tools}/header.py ${tools}/image.py
    DEPFILE ${unit}.d VERBATIM)
  add_custom_target(${target} DEPENDS ${unit}.dylib)
  set(${target}_FILE ${unit}.dylib PARENT_SCOPE)
endfunction()
