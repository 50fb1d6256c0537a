# corvida_ui: the widget toolkit, the pages and the main window, with the icons, style sheets
# and translations compiled in. The corvida executable only assembles it (app/main.cpp).

# The address the new-version check asks. Empty means the program never asks anyone.
set(CORVIDA_VERSION_ENDPOINT "" CACHE STRING "URL of the new-version endpoint (empty: no check)")
# The maker's web address and contact for the About page's "Feedback" block (empty: no block).
set(CORVIDA_WEBSITE "" CACHE STRING "Product web address shown on the About page")
set(CORVIDA_CONTACT "" CACHE STRING "Contact e-mail address shown on the About page")

set(corvida_ui_sources)
foreach(dir IN ITEMS toolkit/widgets ui app)
    file(GLOB dir_sources CONFIGURE_DEPENDS
        ${PROJECT_SOURCE_DIR}/${dir}/*.cpp ${PROJECT_SOURCE_DIR}/${dir}/*.h)
    list(APPEND corvida_ui_sources ${dir_sources})
endforeach()
list(REMOVE_ITEM corvida_ui_sources ${PROJECT_SOURCE_DIR}/app/main.cpp)

add_library(corvida_ui STATIC ${corvida_ui_sources})
target_link_libraries(corvida_ui PUBLIC corvida_core Qt6::Widgets Qt6::Svg)
corvida_autogen_follows_sources(corvida_ui)
set_source_files_properties(${PROJECT_SOURCE_DIR}/ui/PageAboutApp.cpp PROPERTIES
    COMPILE_DEFINITIONS "CORVIDA_WEBSITE=\"${CORVIDA_WEBSITE}\";CORVIDA_CONTACT=\"${CORVIDA_CONTACT}\"")

# On freedesktop systems the file manager is asked over D-Bus to show a file selected.
if(UNIX AND NOT APPLE)
    find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
    target_link_libraries(corvida_ui PRIVATE Qt6::DBus)
    target_compile_definitions(corvida_ui PRIVATE CORVIDA_HAS_DBUS)
endif()

# Resources keep the paths the code names: ":/icons/..." and ":/themes/..." at the root,
# ":/resources/images/..." and ":/resources/css/..." below "/resources".
file(GLOB corvida_root_resources CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/resources/icons/*.svg ${PROJECT_SOURCE_DIR}/resources/themes/*.css)
file(GLOB corvida_prefixed_resources CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/resources/images/*.svg ${PROJECT_SOURCE_DIR}/resources/images/docs/*.png
    ${PROJECT_SOURCE_DIR}/resources/css/*.css
    ${PROJECT_SOURCE_DIR}/resources/fonts/OpenSans/*.ttf)
qt_add_resources(corvida_ui corvida_root_resources PREFIX "/"
    BASE ${PROJECT_SOURCE_DIR}/resources FILES ${corvida_root_resources})
qt_add_resources(corvida_ui corvida_prefixed_resources PREFIX "/resources"
    BASE ${PROJECT_SOURCE_DIR}/resources FILES ${corvida_prefixed_resources})

# lrelease compiles the .ts files during the build; the .qm files land in ":/i18n/".
# "cmake --build build --target update_translations" runs lupdate over the sources. The lower
# layers' texts are scanned too: the pages show the questions and messages of the record
# database and the export.
qt_add_translations(corvida_ui
    TS_FILES
        ${PROJECT_SOURCE_DIR}/resources/translations/corvida_en_US.ts
        ${PROJECT_SOURCE_DIR}/resources/translations/corvida_ru_RU.ts
    SOURCES ${corvida_ui_sources} ${corvida_core_sources}
    RESOURCE_PREFIX "/i18n"
    LUPDATE_OPTIONS -no-obsolete -locations none)

add_executable(corvida ${PROJECT_SOURCE_DIR}/app/main.cpp)
target_link_libraries(corvida PRIVATE corvida_ui)
target_compile_definitions(corvida PRIVATE CORVIDA_VERSION_ENDPOINT="${CORVIDA_VERSION_ENDPOINT}")
