# cpack makes a Debian package of each component. Dependencies are written down instead of
# being looked up, since the package database knows no libraries of another word size; scripts/check-install holds them
# against what the files ask for.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_VENDOR Kelvarin)
set(CPACK_PACKAGE_CONTACT "KelvarinLiveScannerVT40 maintainers <maintainers@kelvarin.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development tools simulator recorder)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
set(CPACK_STRIP_FILES ON)

function(klv_package COMPONENT NAME SECTION DEPENDS SUMMARY TEXT)
  string(TOUPPER ${COMPONENT} component)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${NAME} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${SECTION} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_PACKAGE_DEPENDS ${DEPENDS} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_DESCRIPTION "${SUMMARY}\n${TEXT}" PARENT_SCOPE)
endfunction()

set(own "(= ${PROJECT_VERSION})")
set(base "libc6 (>= 2.36), libgcc-s1, libstdc++6 (>= 12)")
klv_package(library libkelvarinlivescannervt40-1 libs
  "${base}, libboost-thread1.74.0, libhwy1"
  "VT40 ten-finger live-scanner, shared library"
  "Captures flat and rolled fingerprints and signatures with VT40 live-scanners.")
klv_package(development libkelvarinlivescannervt40-dev libdevel
  "libkelvarinlivescannervt40-1 ${own}"
  "VT40 ten-finger live-scanner, development files"
  "Header, pkg-config file and CMake package.")
klv_package(tools kelvarin-vt40-tools graphics
  "${base}, libkelvarinlivescannervt40-1 ${own}, libpng16-16, libturbojpeg0, libzstd1, zlib1g"
  "VT40 ten-finger live-scanner, command-line tool"
  "vt40 captures, rolls, signs, calibrates, and opens a scanner to browsers.")
klv_package(simulator kelvarin-vt40-simulator libs
  "${base}, libpng16-16"
  "VT40 ten-finger live-scanner, simulated scanner"
  "Stands in for the scan library and the liveness library when it is asked for.")
klv_package(recorder kelvarin-vt40-recorder libs
  "${base}, libzstd1, zlib1g"
  "VT40 ten-finger live-scanner, recorder and player"
  "Writes down what a scanner is asked and answers, and answers in its place.")
klv_package(python python3-kelvarin-vt40 python
  "libkelvarinlivescannervt40-1 ${own}, python3 (>= 3.11), python3-numpy"
  "VT40 ten-finger live-scanner, Python package"
  "Gives fingerprints and signatures as numpy arrays.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
# What the manual's lines use: files of pictures, compressed recordings.
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS "python3-pil, python3-zstandard")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "kelvarin-vt40-simulator, python3-matplotlib")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_SOURCE_DIR}/python/postinst ${CMAKE_CURRENT_SOURCE_DIR}/python/prerm)
# Who installs the tool has a scanner, or asks for the simulated one.
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "kelvarin-vt40-simulator, kelvarin-vt40-recorder")
# Packages that are built against the library find out by these which version they need.
file(STRINGS ${CMAKE_SOURCE_DIR}/src/KelvarinLiveScannerVT40/ExportedFunctions.inc rows REGEX "^KLV_EXPORTED")
list(TRANSFORM rows REPLACE "^KLV_EXPORTED\\(([A-Za-z0-9_]+).*$" " \\1@KELVARIN_LIVE_SCANNER_VT40_1 1.5")
list(SORT rows)
list(JOIN rows "\n" KLV_SYMBOLS)
configure_file(symbols.in symbols @ONLY)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/triggers ${CMAKE_CURRENT_SOURCE_DIR}/shlibs
  ${CMAKE_CURRENT_BINARY_DIR}/symbols)
include(CPack)
