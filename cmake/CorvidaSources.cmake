# corvida_core: everything that needs no widgets. Each layer lives in its own folder and the
# folders are collected here, so adding a class means adding its files, nothing more.
set(CORVIDA_CORE_DIRS toolkit settings device analysis storage session)

set(corvida_core_sources)
foreach(dir IN LISTS CORVIDA_CORE_DIRS)
    file(GLOB dir_sources CONFIGURE_DEPENDS
        ${PROJECT_SOURCE_DIR}/${dir}/*.cpp ${PROJECT_SOURCE_DIR}/${dir}/*.h)
    list(APPEND corvida_core_sources ${dir_sources})
endforeach()

# zlib reads written workbooks back before an export is reported as done.
find_package(ZLIB REQUIRED)

add_library(corvida_core STATIC ${corvida_core_sources})
target_include_directories(corvida_core PUBLIC
    ${PROJECT_SOURCE_DIR}
    ${EDFLIB_INCLUDE_DIR})
target_compile_definitions(corvida_core PUBLIC
    CORVIDA_VERSION="${PROJECT_VERSION}")
target_link_libraries(corvida_core PUBLIC
    Qt6::Core Qt6::Gui Qt6::Network Qt6::SerialPort Qt6::Core5Compat
    ${EDFLIB_LIBRARY} PkgConfig::XLSXWRITER ZLIB::ZLIB)

# With Ninja, moc only learns of a header added to a folder when its own dependency file says so,
# and a new header is not in it yet. When the globbed source list changes, drop moc's time stamp
# so it runs again and a new class is picked up without a clean build.
function(corvida_autogen_follows_sources target)
    get_target_property(sources ${target} SOURCES)
    string(MD5 digest "${sources}")
    if(NOT "${digest}" STREQUAL "${CORVIDA_SOURCE_DIGEST_${target}}")
        file(REMOVE ${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/timestamp)
        set(CORVIDA_SOURCE_DIGEST_${target} "${digest}" CACHE INTERNAL "")
    endif()
endfunction()
corvida_autogen_follows_sources(corvida_core)
