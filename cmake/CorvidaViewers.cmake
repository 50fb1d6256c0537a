# corvida_viewers: the signal and experiment viewers, the widgets that draw records and live
# traces. They need nothing of the rest of the interface, so they build on their own.
file(GLOB corvida_viewers_sources CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/ui/*Viewer*.cpp ${PROJECT_SOURCE_DIR}/ui/*Viewer*.h)

add_library(corvida_viewers STATIC ${corvida_viewers_sources})
target_link_libraries(corvida_viewers PUBLIC corvida_core Qt6::Widgets)
corvida_autogen_follows_sources(corvida_viewers)
