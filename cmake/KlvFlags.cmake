# Compiler settings that every target of this project shares, carried by one interface target.
# Nothing is set globally, so a target that does not link it shows at once.

add_library(klv_flags INTERFACE)
target_compile_options(klv_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -Wthread-safety-beta>
  # The same bytes on every machine: no fused multiply-add that one machine has and another has not.
  -ffp-contract=off
  # A library with symbols that are unique in a process is never unloaded, whatever its host asks for.
  $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
  # Exceptions carry source paths; these name files within the project, wherever it was built.
  -fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  target_compile_options(klv_flags INTERFACE -msse2 -mfpmath=sse)
endif()
if(KLV_WERROR)
  target_compile_options(klv_flags INTERFACE -Werror)
endif()
# What is shipped resists attacks: buffers are checked where their sizes are known, stacks are guarded, and the linker's tables
# cannot be written to.
if(CMAKE_BUILD_TYPE STREQUAL Release AND NOT KLV_SANITIZE)
  target_compile_options(klv_flags INTERFACE -fstack-protector-strong -fstack-clash-protection)
  target_compile_definitions(klv_flags INTERFACE _FORTIFY_SOURCE=2)
  target_link_options(klv_flags INTERFACE "LINKER:-z,relro,-z,now")
endif()
if(KLV_SANITIZE)
  target_compile_options(klv_flags INTERFACE
    -fsanitize=${KLV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(klv_flags INTERFACE -fsanitize=${KLV_SANITIZE})
endif()
# Linked after klv_flags by what is slow to build with the checks for undefined behaviour, and is no code of the product.
add_library(klv_lean INTERFACE)
if(KLV_LEAN AND KLV_SANITIZE MATCHES undefined)
  target_compile_options(klv_lean INTERFACE -fno-sanitize=undefined)
endif()
target_compile_definitions(klv_flags INTERFACE BOOST_ALL_NO_LIB)

# For tests that load the simulated libraries by their names. The address sanitizer opens libraries in the library's place,
# so that the run path of the library does not count.
set(KLV_RUN_ENVIRONMENT "")
if(KLV_SANITIZE)
  set(KLV_RUN_ENVIRONMENT "LD_LIBRARY_PATH=${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/kelvarin-vt40/simulator")
endif()

# What precedes a program that a test starts: nothing, or an emulator.
string(JOIN " " KLV_RUN_PREFIX ${CMAKE_CROSSCOMPILING_EMULATOR})
if(KLV_RUN_PREFIX)
  string(APPEND KLV_RUN_PREFIX " ")
endif()
