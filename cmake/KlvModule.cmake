# The one rule by which folders become targets.
#
#   klv_module(NAME FOLDER folder HEADERS ... SOURCES ... DEPS ... [SYSTEM_DEPS ...] [GROUP sdk|simulator])
#
# makes the static library NAME from the files of the current folder. Its headers are reached as
# "folder/Header.h", and only by targets that name NAME among their DEPS: each module has an include
# folder of its own, with links to just the headers that it lists. A dependency that is not declared
# therefore does not compile. GROUP collects the modules that make up one shared library.
#
#   klv_test(NAME SOURCES ... DEPS ... [ENVIRONMENT ...] [LABELS ...])
#
# makes a GoogleTest program and registers each of its tests.

function(klv_module NAME)
  cmake_parse_arguments(ARG "" "FOLDER;GROUP" "HEADERS;SOURCES;DEPS;SYSTEM_DEPS" ${ARGN})
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
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS;ENVIRONMENT;LABELS" ${ARGN})
  add_executable(${NAME} ${ARG_SOURCES})
  target_link_libraries(${NAME} PRIVATE ${ARG_DEPS} GTest::gmock GTest::gtest_main klv_flags)
  gtest_discover_tests(${NAME}
    DISCOVERY_MODE PRE_TEST
    PROPERTIES TIMEOUT 300 ENVIRONMENT "${ARG_ENVIRONMENT}" LABELS "${ARG_LABELS}")
endfunction()
