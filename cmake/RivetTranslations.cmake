# The user texts in other languages, as resources of RivetCore: :/rivet/translations/rivet_<language>.qm
# holds those of the core and of the command rivet. scripts/translations keeps the .ts files complete.

find_program(LRELEASE_PROGRAM NAMES lrelease-qt5 lrelease HINTS /usr/lib/qt5/bin REQUIRED
             NO_CMAKE_FIND_ROOT_PATH)

file(GLOB translations CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/translations/rivet_*.ts")
set(translations_dir "${CMAKE_BINARY_DIR}/translations")
set(compiled)
set(entries)
foreach(translation IN LISTS translations)
    get_filename_component(name "${translation}" NAME_WE)
    add_custom_command(OUTPUT "${translations_dir}/${name}.qm"
        COMMAND "${LRELEASE_PROGRAM}" -silent "${translation}" -qm "${translations_dir}/${name}.qm"
        DEPENDS "${translation}" VERBATIM)
    list(APPEND compiled "${translations_dir}/${name}.qm")
    string(APPEND entries "<file>${name}.qm</file>")
endforeach()

file(CONFIGURE OUTPUT "${translations_dir}/translations.qrc" CONTENT
    "<RCC><qresource prefix=\"/rivet/translations\">${entries}</qresource></RCC>\n")
qt5_add_resources(translation_sources "${translations_dir}/translations.qrc")
set_source_files_properties(${translation_sources} PROPERTIES SKIP_AUTOMOC ON)
set_property(SOURCE ${translation_sources} APPEND PROPERTY OBJECT_DEPENDS "${compiled}")
target_sources(RivetCore PRIVATE ${translation_sources})
