# Tool chain of the preset i386: the 64-bit compiler with -m32, libraries from the folder that scripts/i386-sysroot fills,
# headers that know no word size from this machine.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
foreach(language C CXX)
  # Files beyond 2 GiB. Not _TIME_BITS: the Boost libraries hand times across with 32 bits.
  set(CMAKE_${language}_FLAGS_INIT "-m32 -D_FILE_OFFSET_BITS=64")
endforeach()
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
get_filename_component(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../build/i386-sysroot ABSOLUTE)
set(libraries ${CMAKE_FIND_ROOT_PATH}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE})
foreach(kind EXE SHARED MODULE)
  # Run paths of the old kind, which also hold for what the libraries of that folder need of each other.
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-L${libraries} -Wl,-rpath-link,${libraries} -Wl,--disable-new-dtags")
endforeach()
set(CMAKE_BUILD_RPATH ${libraries})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)

# A kernel without 32-bit programs runs them in the emulator; a 32-bit program that is always there shows
# whether it does.
execute_process(COMMAND /lib/ld-linux.so.2 --version RESULT_VARIABLE runs OUTPUT_QUIET ERROR_QUIET)
if(NOT runs EQUAL 0)
  set(CMAKE_CROSSCOMPILING_EMULATOR qemu-i386 -cpu max)
endif()
