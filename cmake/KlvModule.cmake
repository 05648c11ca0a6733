# The one rule by which folders become targets.
#
#   klv_module(NAME FOLDER folder HEADERS ... SOURCES ... DEPS ... [SYSTEM_DEPS ...] [GROUP sdk|simulator]
#              [HOT] [APART])
#
# makes the static library NAME from the files of the current folder. Its headers are reached as
# "folder/Header.h", and only by targets that name NAME among their DEPS: each module has an include
# folder of its own, with links to just the headers that it lists. A dependency that is not declared
# therefore does not compile. GROUP collects the modules that make up one shared library. HOT marks a module
# that computes for one thread at a time and would take most of a sanitized test's time: the thread sanitizer keeps out,
# the others leave it its optimiser. APART marks a module or a test whose sources the compiler takes one by one in all
# presets; elsewhere only release does so, and names of a file's own must not stand twice in a module.
#
#   klv_test(NAME SOURCES ... DEPS ... [ENVIRONMENT ...] [LABELS ...] [APART])
#
# makes a GoogleTest program and registers each of its tests. LABELS engine marks programs in which threads
# meet; the target engine_tests builds these alone. LABELS paced marks programs that keep up with a scanner's clock. The
# target plain_tests builds what has neither label, with what tests that are no GoogleTest programs add to it. LABELS words
# marks programs whose outcome may depend on the word size: sizes, stored formats, rounding; words_tests builds these alone.
#
#   klv_run_path(NAME PATHS)
#
# says where the run-time linker looks for the libraries of an installed target.
#
#   klv_fuzz(NAME SOURCES ... DEPS ... [REPAIRS])
#
# makes a fuzz target: a program that feeds made-up bytes to what it links. REPAIRS: it puts the checksums of its inputs right. The target fuzz_readers builds those of readers,
# fuzz_targets all of them.

add_custom_target(engine_tests)
add_custom_target(plain_tests)
add_custom_target(words_tests)
add_custom_target(fuzz_readers)
add_custom_target(fuzz_targets DEPENDS fuzz_readers)

# The code of tests runs too briefly to be worth the optimiser's time.
set(KLV_TEST_OPTIONS $<$<CONFIG:Release>:-O1>)

function(klv_module NAME)
  cmake_parse_arguments(ARG "HOT;APART" "FOLDER;GROUP" "HEADERS;SOURCES;DEPS;SYSTEM_DEPS" ${ARGN})
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "klv_module(${NAME}): unknown arguments ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  set(include_dir ${CMAKE_BINARY_DIR}/headers/${NAME})
  file(REMOVE_RECURSE ${include_dir})
  foreach(header IN LISTS ARG_HEADERS)
    if(NOT EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${header})
      message(FATAL_ERROR "klv_module(${NAME}): no header ${header}")
    endif()
    get_filename_component(header_dir ${include_dir}/${ARG_FOLDER}/${header} DIRECTORY)
    file(MAKE_DIRECTORY ${header_dir})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${header} ${include_dir}/${ARG_FOLDER}/${header} SYMBOLIC)
  endforeach()

  if(ARG_SOURCES)
    add_library(${NAME} STATIC ${ARG_SOURCES})
    target_include_directories(${NAME} PUBLIC ${include_dir})
    target_link_libraries(${NAME} PUBLIC ${ARG_DEPS} ${ARG_SYSTEM_DEPS} PRIVATE klv_flags)
    if(ARG_APART)
      set_target_properties(${NAME} PROPERTIES UNITY_BUILD OFF)
    endif()
    if(ARG_HOT AND KLV_SANITIZE MATCHES "thread")
      set_source_files_properties(${ARG_SOURCES} PROPERTIES COMPILE_OPTIONS -fno-sanitize=thread)
    elseif(ARG_HOT AND KLV_SANITIZE)
      set_source_files_properties(${ARG_SOURCES} PROPERTIES COMPILE_OPTIONS -O2)
    endif()
    if(ARG_GROUP)
      set_property(GLOBAL APPEND PROPERTY KLV_GROUP_${ARG_GROUP} ${NAME})
      set_property(GLOBAL APPEND PROPERTY KLV_GROUP_${ARG_GROUP}_SYSTEM_DEPS ${ARG_SYSTEM_DEPS})
    endif()
  else()
    add_library(${NAME} INTERFACE)
    target_include_directories(${NAME} INTERFACE ${include_dir})
    target_link_libraries(${NAME} INTERFACE ${ARG_DEPS} ${ARG_SYSTEM_DEPS})
  endif()
endfunction()

function(klv_test NAME)
  cmake_parse_arguments(ARG "APART" "" "SOURCES;DEPS;ENVIRONMENT;LABELS" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  if(ARG_APART)
    set_target_properties(${NAME} PROPERTIES UNITY_BUILD OFF)
  endif()
  if("engine" IN_LIST ARG_LABELS)
    add_dependencies(engine_tests ${NAME})
  elseif(NOT "paced" IN_LIST ARG_LABELS)
    add_dependencies(plain_tests ${NAME})
  endif()
  if("words" IN_LIST ARG_LABELS)
    add_dependencies(words_tests ${NAME})
  endif()
  target_include_directories(${NAME} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support)
  target_link_libraries(${NAME} PRIVATE ${ARG_DEPS} GTest::gmock GTest::gtest_main klv_flags klv_lean)
  target_compile_options(${NAME} PRIVATE ${KLV_TEST_OPTIONS})
  target_precompile_headers(${NAME} REUSE_FROM test_Prefix)
  target_compile_definitions(${NAME} PRIVATE KLV_RUN="${KLV_RUN_PREFIX}")
  # An empty value would vanish from the list and take its neighbour's place.
  set(properties TIMEOUT 300)
  if(KLV_RUN_PREFIX)
    target_compile_definitions(${NAME} PRIVATE KLV_EMULATED)
    set(properties TIMEOUT 1200)
  endif()
  foreach(property ENVIRONMENT LABELS)
    if(ARG_${property})
      list(APPEND properties ${property} "${ARG_${property}}")
    endif()
  endforeach()
  if(KLV_RUN_PREFIX)
    # An emulator takes longer to start than most tests: one start a program.
    add_test(NAME ${NAME} COMMAND ${NAME} --gtest_brief=1)
    set_tests_properties(${NAME} PROPERTIES ${properties})
  else()
    gtest_discover_tests(${NAME} DISCOVERY_MODE PRE_TEST PROPERTIES ${properties})
  endif()
endfunction()

# Gives the target NAME the same run path in the build tree and after installation. A run path that is changed when a
# target is installed ends in an empty element in the build tree, which stands for the working directory.
function(klv_run_path NAME PATHS)
  set_target_properties(${NAME} PROPERTIES INSTALL_RPATH "${PATHS}")
  if(CMAKE_BUILD_RPATH)
    # Libraries of another word size are found by their own paths, which are not installed.
    set_target_properties(${NAME} PROPERTIES BUILD_RPATH "${PATHS};${CMAKE_BUILD_RPATH}" BUILD_RPATH_USE_ORIGIN ON)
  else()
    set_target_properties(${NAME} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
  endif()
endfunction()

function(klv_fuzz NAME)
  cmake_parse_arguments(ARG "REPAIRS" "" "SOURCES;DEPS" ${ARGN})
  if(ARG_REPAIRS)
    list(APPEND ARG_SOURCES ${CMAKE_SOURCE_DIR}/fuzz/support/Repair.cpp)
  endif()
  add_executable(${NAME} ${ARG_SOURCES})
  target_include_directories(${NAME} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support)
  target_link_libraries(${NAME} PRIVATE ${ARG_DEPS} fuzz_Support klv_flags)
  target_link_options(${NAME} PRIVATE -fsanitize=fuzzer)
  add_dependencies(fuzz_readers ${NAME})
endfunction()

function(klv_reliability NAME)
  set(tests ${CMAKE_SOURCE_DIR}/tests)
  add_executable(${NAME} ${ARGN}
    ${tests}/reliability/CallSequence.cpp ${tests}/reliability/QuickClock.cpp ${tests}/reliability/SequenceContent.cpp
    ${tests}/reliability/SequenceSteps.cpp ${tests}/support/Allocations.cpp)
  # No compiler is to see through one half of a pair of new and delete.
  set_source_files_properties(${tests}/support/Allocations.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  target_include_directories(${NAME} PRIVATE
    ${tests}/reliability ${tests}/support ${tests}/KelvarinLiveScannerVT40
    $<TARGET_PROPERTY:MXToolsThreads,INTERFACE_INCLUDE_DIRECTORIES>
    $<TARGET_PROPERTY:sim_device,INTERFACE_INCLUDE_DIRECTORIES>
    $<TARGET_PROPERTY:sim_liveness,INTERFACE_INCLUDE_DIRECTORIES>)
  target_link_libraries(${NAME} PRIVATE
    KelvarinLiveScannerVT40 KelvarinLiveScannerVT40Table KelvarinVTScanAPI KelvarinFakeFingerDetectionVT40
    Boost::thread Threads::Threads klv_flags klv_lean ${CMAKE_DL_LIBS})
  target_compile_options(${NAME} PRIVATE ${KLV_TEST_OPTIONS})
  if(KLV_SANITIZE)
    set(text ", ${KLV_SANITIZE}")
  endif()
  # The operators new and delete of clang's thread sanitizer come before those of Allocations.cpp: no allocation fails there.
  if(KLV_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_link_options(${NAME} PRIVATE LINKER:-z,muldefs)
  endif()
  target_compile_definitions(${NAME} PRIVATE "KLV_SANITIZER_TEXT=\"${text}\"")
  # What the program replaces counts for the libraries too.
  set_target_properties(${NAME} PROPERTIES ENABLE_EXPORTS ON UNITY_BUILD ON)
endfunction()
