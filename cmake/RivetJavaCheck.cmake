# The program that tells whether a Java runs, as the resource :/rivet/JavaCheck.jar of a host.
#
# Target RivetJavaCheck: a host or a test gets the resource by
#     target_link_libraries(host PRIVATE RivetJavaCheck)
# A host outside of this tree finds JavaCheck.qrc and JavaCheck.jar in <prefix>/share/rivet.

include(RivetJar)

set(java_check_dir "${CMAKE_BINARY_DIR}/java-check")
# Runs on Java 8 already, which old game clients ask for.
rivet_add_jar("${java_check_dir}/JavaCheck.jar" RELEASE 8 MAIN JavaCheck
    SOURCES "${PROJECT_SOURCE_DIR}/core/deploy/JavaCheck.java")
configure_file("${PROJECT_SOURCE_DIR}/core/deploy/JavaCheck.qrc"
               "${java_check_dir}/JavaCheck.qrc" COPYONLY)
qt5_add_resources(java_check_sources "${java_check_dir}/JavaCheck.qrc")
add_library(RivetJavaCheck OBJECT ${java_check_sources})
set_target_properties(RivetJavaCheck PROPERTIES AUTOMOC OFF)
target_link_libraries(RivetJavaCheck PRIVATE Qt5::Core)

install(FILES "${java_check_dir}/JavaCheck.jar" "${java_check_dir}/JavaCheck.qrc"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/rivet")
