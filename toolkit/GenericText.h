#pragma once

#include <QCoreApplication>
#include <QString>

// The words the whole program shares ("Save", "Pressure", "mmHg", ...) are translated in one
// context, "Generic". Call sites mark the text with QT_TRANSLATE_NOOP("Generic", ...) so that the
// translation tools find it.
inline QString genericText(const char *text)
{
    return QCoreApplication::translate("Generic", text);
}
