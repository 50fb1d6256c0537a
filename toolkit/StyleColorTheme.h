#pragma once

#include <QObject>
#include <QString>

// The colour themes of the interface. The widget style manager applies them; the enumeration
// lives here, below the widgets, because the settings store it by key name.
class StyleColorTheme
{
    Q_GADGET
public:
    // System follows the operating system's light or dark preference.
    enum ColorThemeEnum { System = 0, Light = 1, Dark = 2 };
    Q_ENUM(ColorThemeEnum)

    // The name under which the style manager registers the theme's sheet ("light", "dark"),
    // empty for System.
    static QString themeName(ColorThemeEnum theme);
};
