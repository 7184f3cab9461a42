# Java programs of our own.

find_package(Java 11 REQUIRED COMPONENTS Development)

# rivet_add_jar(<file> RELEASE <number> SOURCES <file>... [MAIN <class>] [USES <jar>...]
#               [WITH <folder>])
# The rule that makes a jar, which runs from that Java release on: the classes of SOURCES, and all
# that lies in the folder WITH.
function(rivet_add_jar jar)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "RELEASE;MAIN;WITH" "SOURCES;USES")
    set(classes "${jar}.classes")
    set(options)
    if(ARG_MAIN)
        set(options --main-class "${ARG_MAIN}")
    endif()
    set(extra_files)
    if(ARG_WITH)
        list(APPEND options -C "${ARG_WITH}" .)
        file(GLOB_RECURSE extra_files "${ARG_WITH}/*")
    endif()
    set(class_path)
    if(ARG_USES)
        string(JOIN ":" class_path ${ARG_USES})
        set(class_path --class-path "${class_path}")
    endif()
    add_custom_command(OUTPUT "${jar}"
        COMMAND "${CMAKE_COMMAND}" -E rm -rf "${classes}"
        COMMAND "${Java_JAVAC_EXECUTABLE}" --release ${ARG_RELEASE} -Xlint:-options
                ${class_path} -d "${classes}" ${ARG_SOURCES}
        COMMAND "${Java_JAR_EXECUTABLE}" --create --file "${jar}" ${options} -C "${classes}" .
        DEPENDS ${ARG_SOURCES} ${ARG_USES} ${extra_files} VERBATIM)
endfunction()
