# JPEG compression: the target TurboJPEG::TurboJPEG. The package of the system has a pkg-config file only, which names no
# library of another word size.
find_path(TurboJPEG_INCLUDE_DIR turbojpeg.h)
find_library(TurboJPEG_LIBRARY turbojpeg)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(TurboJPEG REQUIRED_VARS TurboJPEG_LIBRARY TurboJPEG_INCLUDE_DIR)
mark_as_advanced(TurboJPEG_INCLUDE_DIR TurboJPEG_LIBRARY)
if(TurboJPEG_FOUND AND NOT TARGET TurboJPEG::TurboJPEG)
  add_library(TurboJPEG::TurboJPEG UNKNOWN IMPORTED)
  set_target_properties(TurboJPEG::TurboJPEG PROPERTIES
    IMPORTED_LOCATION ${TurboJPEG_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${TurboJPEG_INCLUDE_DIR})
endif()
