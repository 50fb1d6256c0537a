#include "toolkit/StyleColorTheme.h"

QString StyleColorTheme::themeName(ColorThemeEnum theme)
{
    switch (theme) {
    case Light:
        return QStringLiteral("light");
    case Dark:
        return QStringLiteral("dark");
    case System:
        break;
    }
    return {};
}
