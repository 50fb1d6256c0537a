#pragma once

#include <QMetaEnum>
#include <QMetaType>
#include <QString>
#include <QVariant>

// Turns setting values into the text kept in settings files and hints, and back. The same
// conversion serves the Default hints of a class, the elements of an XML settings file and the
// strings of a JSON one, so a value written by one is read back by all.
//
//  - booleans "true"/"false"; numbers in C-locale notation, doubles with the shortest text that
//    reads back to the same value;
//  - colours "#rrggbb" ("#aarrggbb" when not opaque);
//  - enumerations by key name; reading also accepts the key with its scope
//    ("PressureLimits::Pressure_200_50", "Qt::SortOrder::DescendingOrder") and flag keys joined
//    with "|";
//  - byte arrays in base64; sizes and points "x;y" (floating points with 6 significant digits);
//  - one-byte characters as their decimal number;
//  - date-times in ISO 8601 with milliseconds;
//  - lists and maps as JSON text (only hints need this: settings files nest them as elements).
//
// Two double-quote characters read as the empty text, because an empty class-information entry
// could not be told from a missing one, and "QDateTime::currentDateTime" reads as the moment of
// reading.
class SettingsValueText
{
public:
    static QString emptyTextMarker() { return QStringLiteral("\"\""); }
    static QString currentDateTimeMarker() { return QStringLiteral("QDateTime::currentDateTime"); }

    static QString toText(const QVariant &value, const QMetaEnum &enumerator = QMetaEnum());

    // The value of the given type that the text stands for. ok tells whether the text could be
    // read; when it could not, the result is an invalid variant.
    static QVariant fromText(const QString &text, QMetaType type,
                             const QMetaEnum &enumerator = QMetaEnum(), bool *ok = nullptr);

    // Converts a value of any type (for example a number or a key name) to the given type by the
    // same rules, so that values from JSON or from an editor land as the property's own type.
    static QVariant convert(const QVariant &value, QMetaType type,
                            const QMetaEnum &enumerator = QMetaEnum(), bool *ok = nullptr);

    // Reads an enumeration key, with or without its scope, or the number of a valid value.
    static bool enumValueFromText(const QString &text, const QMetaEnum &enumerator, int *value);

    static bool isNumeric(QMetaType type);
    // Whole-number types, one-byte characters included (they are stored as numbers).
    static bool isInteger(QMetaType type);
};
