# What "cmake --install" puts on a system, and the Debian package built from it with
# "cpack -G DEB" in the build folder. The translations, icons and style sheets are compiled into
# the program (see CorvidaUi.cmake), so only the two programs and the desktop integration are
# installed. Tests and benchmarks are never installed.

include(GNUInstallDirs)

# The rule goes beside Debian 12's own udev rules, also when the programs go below /usr/local.
set(CORVIDA_UDEV_RULES_DIR "/lib/udev/rules.d" CACHE PATH "Where the udev rule for the unit goes")
set(CORVIDA_PACKAGE_MAINTAINER "Quorvex <corvida@quorvex.invalid>"
    CACHE STRING "Maintainer field of the Debian package")

set(corvida_linux_dir ${PROJECT_SOURCE_DIR}/resources/linux)
install(TARGETS corvida corvida-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${corvida_linux_dir}/corvida.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${corvida_linux_dir}/corvida.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${corvida_linux_dir}/70-corvida.rules DESTINATION ${CORVIDA_UDEV_RULES_DIR})
# The manual (HTML and Markdown), the manual pages, the change log and the copyright.
include(${CMAKE_CURRENT_LIST_DIR}/CorvidaDocs.cmake)

set(CPACK_PACKAGE_NAME corvida)
set(CPACK_PACKAGE_VENDOR Quorvex)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "tail-cuff blood pressure of laboratory rats and mice")
# Debian wants the long description in lines of under 80 characters; CPack keeps the breaks.
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "Corvida measures blood pressure and heart rate of laboratory rats and mice\n"
    "without surgery. It runs the cuff cycle of a tail-cuff measuring unit on USB,\n"
    "shows cuff pressure and pulse live, finds the heart rate and the systolic and\n"
    "diastolic points, and keeps every measurement as an EDF+ record that can be\n"
    "reviewed, corrected and exported to spreadsheets.\n"
    "\n"
    "The package holds the desktop program, the command-line tool corvida-cli and a\n"
    "udev rule that gives a unit's serial port to the plugdev group and to the user\n"
    "logged in at the computer.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_WARN_ON_ABSOLUTE_INSTALL_DESTINATION OFF)

set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CORVIDA_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# dpkg-shlibdeps (dpkg-dev) finds the libraries the programs link; the SVG plugins that draw the
# icons come with one of them (libqt6svg6). What it cannot see is Qt's own texts in the chosen
# language, which the program loads from qt6-translations-l10n when it starts.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-translations-l10n")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-open-sans")
# A unit that is plugged in while the package comes or goes gets the new port permissions at once.
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${corvida_linux_dir}/debian/postinst ${corvida_linux_dir}/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
