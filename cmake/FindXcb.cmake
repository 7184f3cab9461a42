# Finds the X11 client library and defines the imported target Xcb::Xcb.
find_path(XCB_INCLUDE_DIR xcb/xcb.h)
find_library(XCB_LIBRARY NAMES xcb)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Xcb REQUIRED_VARS XCB_LIBRARY XCB_INCLUDE_DIR)

if(Xcb_FOUND AND NOT TARGET Xcb::Xcb)
    add_library(Xcb::Xcb UNKNOWN IMPORTED)
    set_target_properties(Xcb::Xcb PROPERTIES
        IMPORTED_LOCATION "${XCB_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${XCB_INCLUDE_DIR}")
endif()
mark_as_advanced(XCB_INCLUDE_DIR XCB_LIBRARY)
