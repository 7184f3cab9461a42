# What another project finds the installed core by, its documents, and the Debian packages.
#
# The components of the installation: library, host, service, and developer for all else.

include(CMakePackageConfigHelpers)

# --- find_package(RivetCore) ----------------------------------------------------------------------

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/RivetCore")
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/RivetCoreConfig.cmake.in"
    "${CMAKE_BINARY_DIR}/RivetCoreConfig.cmake" INSTALL_DESTINATION "${package_dir}"
    PATH_VARS CMAKE_INSTALL_DATADIR)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/RivetCoreConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/RivetCoreConfig.cmake"
              "${CMAKE_BINARY_DIR}/RivetCoreConfigVersion.cmake"
        DESTINATION "${package_dir}")
install(EXPORT RivetCoreTargets NAMESPACE Rivet:: DESTINATION "${package_dir}"
        FILE RivetCoreTargets.cmake)

# --- pkg-config rivet-core ------------------------------------------------------------------------

set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH to_prefix "/${pkgconfig_dir}" "/")
string(REGEX REPLACE "/$" "" to_prefix "${to_prefix}")
# Qt insists on it, and its own file does not say so.
set(position_independent)
if(NOT WIN32)
    set(position_independent " -fPIC")
endif()
configure_file("${PROJECT_SOURCE_DIR}/cmake/rivet-core.pc.in" "${CMAKE_BINARY_DIR}/rivet-core.pc"
               @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/rivet-core.pc" DESTINATION "${pkgconfig_dir}")

# --- Documents ------------------------------------------------------------------------------------

install(FILES "${PROJECT_SOURCE_DIR}/README.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        FILES_MATCHING PATTERN "*.md")

# --- Debian packages, which scripts/package-debian makes ------------------------------------------

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_PACKAGE_CONTACT "Rivet developers <developers@rivet.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
# Each package says in one line what it is.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_COMPONENTS_ALL library developer host service)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${RIVET_BUILD_NUMBER})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(library_package librivetcore${PROJECT_VERSION_MAJOR})
set(same_version "(= ${PROJECT_VERSION}-${RIVET_BUILD_NUMBER})")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "${PROJECT_DESCRIPTION}")
set(CPACK_DEBIAN_DEVELOPER_PACKAGE_NAME librivetcore-dev)
set(CPACK_DEBIAN_DEVELOPER_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPER_PACKAGE_DEPENDS "${library_package} ${same_version}, qtbase5-dev")
set(CPACK_COMPONENT_DEVELOPER_DESCRIPTION "Headers, tools and guides for hosts of the Rivet core")
set(CPACK_DEBIAN_HOST_PACKAGE_NAME rivet)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION games)
set(CPACK_DEBIAN_HOST_PACKAGE_DEPENDS "${library_package} ${same_version}")
set(CPACK_COMPONENT_HOST_DESCRIPTION "Launcher for Minecraft on the command line")
set(CPACK_DEBIAN_SERVICE_PACKAGE_NAME rivet-service)
set(CPACK_DEBIAN_SERVICE_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_SERVICE_PACKAGE_DEPENDS "${library_package} ${same_version}")
set(CPACK_COMPONENT_SERVICE_DESCRIPTION "Local stand-in for the web services of the Rivet launcher")
include(CPack)
