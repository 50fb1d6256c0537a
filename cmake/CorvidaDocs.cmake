# Documents built from the sources: the manual as one HTML page (the About page opens it; a
# browser shows it with its pictures), and the manual pages of both programs made from their own
# --help texts, so they never drift from the programs.

set(corvida_docs_dir ${CMAKE_BINARY_DIR}/docs)
set(CORVIDA_PYTHON3 /usr/bin/python3 CACHE FILEPATH "Debian's Python, with python3-markdown")
file(GLOB corvida_manual_images CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/images/*)
add_custom_command(
    OUTPUT ${corvida_docs_dir}/manual.html
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${PROJECT_SOURCE_DIR}/docs/images
        ${corvida_docs_dir}/images
    COMMAND ${CORVIDA_PYTHON3} ${PROJECT_SOURCE_DIR}/scripts/manual/manual-html.py
        ${PROJECT_SOURCE_DIR}/docs/manual.md ${corvida_docs_dir}/manual.html
    DEPENDS ${PROJECT_SOURCE_DIR}/docs/manual.md ${PROJECT_SOURCE_DIR}/scripts/manual/manual-html.py
        ${corvida_manual_images}
    COMMENT "Manual as HTML"
    VERBATIM)

find_program(HELP2MAN help2man)
set(corvida_man_pages)
if(HELP2MAN)
    foreach(program corvida corvida-cli)
        if(program STREQUAL corvida)
            set(summary "tail-cuff blood pressure of laboratory rats and mice")
        else()
            set(summary "measure, analyse, list and export Corvida records from a terminal")
        endif()
        set(page ${corvida_docs_dir}/${program}.1)
        add_custom_command(
            OUTPUT ${page}.gz
            COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ${HELP2MAN} --no-info
                --no-discard-stderr --section=1 --name=${summary} --output=${page}
                $<TARGET_FILE:${program}>
            COMMAND gzip -9nf ${page}
            DEPENDS ${program}
            COMMENT "Manual page of ${program}"
            VERBATIM)
        list(APPEND corvida_man_pages ${page}.gz)
    endforeach()
else()
    message(STATUS "help2man not found: no manual pages (scripts/install-deps.sh installs it)")
endif()

add_custom_target(corvida_docs ALL DEPENDS ${corvida_docs_dir}/manual.html ${corvida_man_pages})

# Debian wants the change log and the copyright beside the documentation, the log compressed.
add_custom_command(
    OUTPUT ${corvida_docs_dir}/changelog.gz
    COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/resources/linux/debian/changelog
        > ${corvida_docs_dir}/changelog.gz
    DEPENDS ${PROJECT_SOURCE_DIR}/resources/linux/debian/changelog
    VERBATIM)
add_custom_target(corvida_changelog ALL DEPENDS ${corvida_docs_dir}/changelog.gz)

install(FILES ${corvida_docs_dir}/manual.html ${PROJECT_SOURCE_DIR}/docs/manual.md
    ${corvida_docs_dir}/changelog.gz ${PROJECT_SOURCE_DIR}/resources/linux/debian/copyright
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/corvida)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/images DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/corvida)
if(corvida_man_pages)
    install(FILES ${corvida_man_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()
