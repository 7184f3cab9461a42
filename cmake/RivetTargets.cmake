# How every target of the tree is built: language level, warnings, export rules, installation.

include(GenerateExportHeader)

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Programs and their libraries lie together, so that the tests find the DLLs on Windows.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(RIVET_GENERATED_DIR "${CMAKE_BINARY_DIR}/generated")
# What says nothing else is for those who build on the core. See RivetPackages for the others.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME developer)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # Relative paths, so that a fresh clone in another folder finds what an older one compiled.
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env "CCACHE_NOHASHDIR=1"
        "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" "${CCACHE_PROGRAM}")
endif()

if(RIVET_SANITIZERS)
    add_compile_options(-fsanitize=${RIVET_SANITIZERS} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer -O1)
    add_link_options(-fsanitize=${RIVET_SANITIZERS})
endif()

# rivet_set_up_target(<target> [TEST]): warnings and Qt rules of our own code. Tests may write texts
# as plain literals.
function(rivet_set_up_target target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
    target_compile_definitions(${target} PRIVATE
        QT_NO_URL_CAST_FROM_STRING QT_NO_FOREACH QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS)
    if(NOT "TEST" IN_LIST ARGN)
        target_compile_definitions(${target} PRIVATE
            QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_USE_QSTRINGBUILDER)
    endif()
endfunction()

# rivet_add_library(<target> FOLDER <folder> [SOURCES <file>...] [INTERNAL <file>...]
#                   [PUBLIC <lib>...] [PRIVATE <lib>...])
# A shared library with hidden visibility and the generated export header
# <folder>/<target>Export.h. File names are relative to the root of the tree, and so are includes.
# The headers among SOURCES are public: they are installed, and each must compile alone.
function(rivet_add_library target)
    cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;INTERNAL;PUBLIC;PRIVATE" ${ARGN})
    list(TRANSFORM ARG_SOURCES PREPEND "${PROJECT_SOURCE_DIR}/")
    list(TRANSFORM ARG_INTERNAL PREPEND "${PROJECT_SOURCE_DIR}/")
    add_library(${target} SHARED ${ARG_SOURCES} ${ARG_INTERNAL})
    add_library(Rivet::${target} ALIAS ${target})
    rivet_set_up_target(${target})
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH "$ORIGIN")

    target_compile_features(${target} PUBLIC cxx_std_17)

    set(export_header "${RIVET_GENERATED_DIR}/${ARG_FOLDER}/${target}Export.h")
    generate_export_header(${target} EXPORT_FILE_NAME "${export_header}")
    target_include_directories(${target} PUBLIC
        "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
        "$<BUILD_INTERFACE:${RIVET_GENERATED_DIR}>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/rivet>")
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})

    set(headers ${ARG_SOURCES})
    list(FILTER headers INCLUDE REGEX "\\.h$")
    set_property(GLOBAL APPEND PROPERTY RIVET_CHECKED_HEADERS ${headers})
    set_property(GLOBAL APPEND PROPERTY RIVET_LIBRARIES ${target})
    install(TARGETS ${target} EXPORT RivetCoreTargets
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
                    NAMELINK_COMPONENT developer
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
    if(headers)
        rivet_install_header("${export_header}" "${RIVET_GENERATED_DIR}")
    endif()
    foreach(header IN LISTS headers)
        rivet_install_header("${header}" "${PROJECT_SOURCE_DIR}")
    endforeach()
endfunction()

# rivet_install_program(<target> <component> [<folder>]): in bin/ without a folder. It finds the
# libraries by their place relative to its own, so the installed tree can be moved.
function(rivet_install_program target component)
    set(folder "${CMAKE_INSTALL_BINDIR}")
    if(ARGC GREATER 2)
        set(folder "${ARGV2}")
    endif()
    file(RELATIVE_PATH libraries "/${folder}" "/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    install(TARGETS ${target} RUNTIME DESTINATION "${folder}" COMPONENT ${component})
endfunction()

# Installs one header under the folder that it has below <root>.
function(rivet_install_header header root)
    file(RELATIVE_PATH relative "${root}" "${header}")
    get_filename_component(folder "${relative}" DIRECTORY)
    install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/rivet/${folder}")
endfunction()

# The target "header-check" compiles each public header alone. Part of scripts/lint.
function(rivet_add_header_check)
    get_property(headers GLOBAL PROPERTY RIVET_CHECKED_HEADERS)
    get_property(libraries GLOBAL PROPERTY RIVET_LIBRARIES)
    set(sources)
    foreach(header IN LISTS headers)
        file(RELATIVE_PATH relative "${PROJECT_SOURCE_DIR}" "${header}")
        string(REPLACE "/" "_" name "${relative}")
        set(source "${CMAKE_BINARY_DIR}/header-check/${name}.cpp")
        file(CONFIGURE OUTPUT "${source}" CONTENT "#include \"${relative}\"\n")
        list(APPEND sources "${source}")
    endforeach()
    add_library(header-check OBJECT EXCLUDE_FROM_ALL ${sources})
    set_target_properties(header-check PROPERTIES AUTOMOC OFF)
    target_link_libraries(header-check PRIVATE ${libraries})
    rivet_set_up_target(header-check)
endfunction()
