#pragma once

#include <QString>

class CorvidaSettings;

// The steps before the main window exists, in the order the program takes them. Each one
// logs what went wrong and carries on: a missing font or sheet never stops the program.
class AppStartup
{
public:
    // Registers the bundled fonts that are present and makes the program's font the family
    // that is actually available: the bundled one, Debian's Open Sans, or the system's.
    static QString setupFonts();
    // Hands the style manager its sheets and themes.
    static void setupStyles();
    // Creates the per-user data folder, makes it the current directory and returns its path
    // (ending in "/").
    static QString setupWorkingFolder();
    // Reads the language from "Settings.xml" in the current directory (or takes the system's)
    // and installs its translators. Returns the language's name.
    static QString setupLanguage();
    // After the settings exist: the colour theme follows "ColorTheme", and a language that
    // was never chosen is stored as the one start-up picked.
    static void bindSettings(CorvidaSettings *settings);
};
