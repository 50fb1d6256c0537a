#include "settings/SettingsValueText.h"

#include <QColor>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QSizeF>
#include <QStringList>
#include <cmath>
#include <limits>

namespace {

QString floatText(float value)
{
    // The shortest text that reads back to the same float; plain conversion through double would
    // write 0.1f as 0.10000000149011612.
    for (int precision = 6; precision < 9; ++precision) {
        const QString text = QString::number(double(value), 'g', precision);
        if (text.toFloat() == value)
            return text;
    }
    return QString::number(double(value), 'g', 9);
}

QString pairText(double a, double b)
{
    return QString::number(a, 'g', 6) + QLatin1Char(';') + QString::number(b, 'g', 6);
}

bool splitPair(const QString &text, QString *a, QString *b)
{
    const QStringList parts = text.split(QLatin1Char(';'));
    if (parts.size() != 2)
        return false;
    *a = parts[0].trimmed();
    *b = parts[1].trimmed();
    return true;
}

bool readInt(const QString &text, int *value)
{
    bool ok = false;
    *value = text.toInt(&ok);
    return ok;
}

bool readFinite(const QString &text, double *value)
{
    bool ok = false;
    *value = text.toDouble(&ok);
    return ok && std::isfinite(*value);
}

// Whole numbers of every width, checked against the range of the target type so that a
// hand-edited 300 does not wrap round in an unsigned char.
QVariant integerFromText(const QString &text, QMetaType type, bool *ok)
{
    const QString t = text.trimmed();
    bool good = false;
    QVariant result;
    const int id = type.id();
    const bool isUnsigned = id == QMetaType::UInt || id == QMetaType::ULongLong ||
                            id == QMetaType::ULong || id == QMetaType::UShort ||
                            id == QMetaType::UChar;
    if (isUnsigned) {
        const qulonglong v = t.toULongLong(&good);
        qulonglong max = std::numeric_limits<qulonglong>::max();
        if (id == QMetaType::UInt)
            max = std::numeric_limits<uint>::max();
        else if (id == QMetaType::ULong)
            max = std::numeric_limits<ulong>::max();
        else if (id == QMetaType::UShort)
            max = std::numeric_limits<ushort>::max();
        else if (id == QMetaType::UChar)
            max = std::numeric_limits<uchar>::max();
        good = good && v <= max;
        result = QVariant(v);
    } else {
        const qlonglong v = t.toLongLong(&good);
        qlonglong min = std::numeric_limits<qlonglong>::min();
        qlonglong max = std::numeric_limits<qlonglong>::max();
        if (id == QMetaType::Int) {
            min = std::numeric_limits<int>::min();
            max = std::numeric_limits<int>::max();
        } else if (id == QMetaType::Long) {
            min = std::numeric_limits<long>::min();
            max = std::numeric_limits<long>::max();
        } else if (id == QMetaType::Short) {
            min = std::numeric_limits<short>::min();
            max = std::numeric_limits<short>::max();
        } else if (id == QMetaType::Char || id == QMetaType::SChar) {
            min = std::numeric_limits<signed char>::min();
            max = std::numeric_limits<signed char>::max();
        }
        good = good && v >= min && v <= max;
        result = QVariant(v);
    }
    if (good)
        good = result.convert(type);
    *ok = good;
    return good ? result : QVariant();
}

QVariant jsonFromText(const QString &text, bool wantObject, bool *ok)
{
    if (text.trimmed().isEmpty()) {
        *ok = true;
        return wantObject ? QVariant(QVariantMap()) : QVariant(QStringList());
    }
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError ||
        (wantObject ? !doc.isObject() : !doc.isArray())) {
        *ok = false;
        return {};
    }
    *ok = true;
    if (wantObject)
        return doc.object().toVariantMap();
    QStringList list;
    for (const QJsonValue &v : doc.array())
        list.append(v.toVariant().toString());
    return list;
}

} // namespace

bool SettingsValueText::isInteger(QMetaType type)
{
    switch (type.id()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return true;
    default:
        return false;
    }
}

bool SettingsValueText::isNumeric(QMetaType type)
{
    return isInteger(type) || type.id() == QMetaType::Double || type.id() == QMetaType::Float;
}

QString SettingsValueText::toText(const QVariant &value, const QMetaEnum &enumerator)
{
    if (!value.isValid())
        return {};
    const QMetaType type = value.metaType();
    if (enumerator.isValid() || (type.flags() & QMetaType::IsEnumeration)) {
        if (enumerator.isValid()) {
            const int v = value.toInt();
            if (enumerator.isFlag())
                return QString::fromLatin1(enumerator.valueToKeys(v));
            return QString::fromLatin1(enumerator.valueToKey(v));
        }
        return QString::number(value.toLongLong());
    }
    switch (type.id()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Double:
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    case QMetaType::Float:
        return floatText(value.toFloat());
    case QMetaType::Char:
    case QMetaType::SChar:
        return QString::number(int(static_cast<signed char>(value.toInt())));
    case QMetaType::UChar:
        return QString::number(uint(static_cast<unsigned char>(value.toUInt())));
    case QMetaType::QColor: {
        const QColor c = value.value<QColor>();
        if (!c.isValid())
            return {};
        return c.alpha() == 255 ? c.name(QColor::HexRgb) : c.name(QColor::HexArgb);
    }
    case QMetaType::QByteArray:
        return QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::QSize: {
        const QSize s = value.toSize();
        return QString::number(s.width()) + QLatin1Char(';') + QString::number(s.height());
    }
    case QMetaType::QSizeF: {
        const QSizeF s = value.toSizeF();
        return pairText(s.width(), s.height());
    }
    case QMetaType::QPoint: {
        const QPoint p = value.toPoint();
        return QString::number(p.x()) + QLatin1Char(';') + QString::number(p.y());
    }
    case QMetaType::QPointF: {
        const QPointF p = value.toPointF();
        return pairText(p.x(), p.y());
    }
    case QMetaType::QDateTime:
        return value.toDateTime().toString(Qt::ISODateWithMs);
    case QMetaType::QTime:
        return value.toTime().toString(Qt::ISODateWithMs);
    case QMetaType::QDate:
        return value.toDate().toString(Qt::ISODate);
    case QMetaType::QStringList:
        return QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(value.toStringList()))
                                     .toJson(QJsonDocument::Compact));
    case QMetaType::QVariantMap:
        return QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(value.toMap()))
                                     .toJson(QJsonDocument::Compact));
    default:
        return value.toString();
    }
}

bool SettingsValueText::enumValueFromText(const QString &text, const QMetaEnum &enumerator,
                                          int *value)
{
    if (!enumerator.isValid())
        return false;
    const QString t = text.trimmed();
    bool isNumber = false;
    const int number = t.toInt(&isNumber);
    if (isNumber) {
        if (enumerator.isFlag() ? !enumerator.valueToKeys(number).isEmpty() || number == 0
                                : enumerator.valueToKey(number) != nullptr) {
            *value = number;
            return true;
        }
        return false;
    }
    int result = 0;
    const QStringList keys = t.split(QLatin1Char('|'));
    if (keys.size() > 1 && !enumerator.isFlag())
        return false;
    for (const QString &scoped : keys) {
        const QStringList parts = scoped.trimmed().split(QStringLiteral("::"));
        // The segment before the key names the enumeration (or, for unscoped keys, the class
        // that holds it); anything further out is the owner's scope and does not matter: the
        // colour theme's default names its enumeration by the style manager that shows it.
        if (parts.size() >= 2) {
            const QString owner = parts[parts.size() - 2];
            if (owner != QLatin1String(enumerator.name()) &&
                owner != QLatin1String(enumerator.enumName()) &&
                owner != QLatin1String(enumerator.scope()))
                return false;
        }
        bool found = false;
        const int v = enumerator.keyToValue(parts.last().toLatin1().constData(), &found);
        if (!found)
            return false;
        result |= v;
    }
    *value = result;
    return true;
}

QVariant SettingsValueText::fromText(const QString &text, QMetaType type,
                                     const QMetaEnum &enumerator, bool *ok)
{
    bool good = false;
    QVariant result;
    const QString t = text == emptyTextMarker() ? QString() : text;
    if (enumerator.isValid() || (type.flags() & QMetaType::IsEnumeration)) {
        int v = 0;
        good = enumValueFromText(t, enumerator, &v);
        if (good) {
            result = QVariant(v);
            if (type.isValid())
                good = result.convert(type);
        }
        if (ok)
            *ok = good;
        return good ? result : QVariant();
    }
    switch (type.id()) {
    case QMetaType::QString:
        result = t;
        good = true;
        break;
    case QMetaType::Bool: {
        const QString b = t.trimmed().toLower();
        good = b == QLatin1String("true") || b == QLatin1String("false") ||
               b == QLatin1String("1") || b == QLatin1String("0");
        result = b == QLatin1String("true") || b == QLatin1String("1");
        break;
    }
    case QMetaType::Double: {
        double d = 0;
        good = readFinite(t.trimmed(), &d);
        result = d;
        break;
    }
    case QMetaType::Float: {
        double d = 0;
        good = readFinite(t.trimmed(), &d) && std::fabs(d) <= std::numeric_limits<float>::max();
        result = float(d);
        break;
    }
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        result = integerFromText(t, type, &good);
        break;
    case QMetaType::QColor: {
        // Empty is "no colour", which is what an unset colour writes.
        const QString c = t.trimmed();
        good = c.isEmpty() || (c.startsWith(QLatin1Char('#')) && QColor::isValidColor(c));
        result = good ? QColor(c) : QColor();
        break;
    }
    case QMetaType::QByteArray: {
        const QByteArray latin = t.trimmed().toLatin1();
        const auto decoded =
            QByteArray::fromBase64Encoding(latin, QByteArray::AbortOnBase64DecodingErrors);
        good = decoded.decodingStatus == QByteArray::Base64DecodingStatus::Ok &&
               QString::fromLatin1(latin) == t.trimmed();
        result = decoded.decoded;
        break;
    }
    case QMetaType::QSize:
    case QMetaType::QPoint: {
        QString a, b;
        int x = 0, y = 0;
        good = splitPair(t, &a, &b) && readInt(a, &x) && readInt(b, &y);
        result = type.id() == QMetaType::QSize ? QVariant(QSize(x, y)) : QVariant(QPoint(x, y));
        break;
    }
    case QMetaType::QSizeF:
    case QMetaType::QPointF: {
        QString a, b;
        double x = 0, y = 0;
        good = splitPair(t, &a, &b) && readFinite(a, &x) && readFinite(b, &y);
        result = type.id() == QMetaType::QSizeF ? QVariant(QSizeF(x, y)) : QVariant(QPointF(x, y));
        break;
    }
    case QMetaType::QDateTime: {
        const QString d = t.trimmed();
        const QDateTime dt = d == currentDateTimeMarker()
                                 ? QDateTime::currentDateTime()
                                 : QDateTime::fromString(d, Qt::ISODateWithMs);
        good = d.isEmpty() || dt.isValid();
        result = dt;
        break;
    }
    case QMetaType::QDate: {
        const QString d = t.trimmed();
        const QDate date =
            d == currentDateTimeMarker() ? QDate::currentDate() : QDate::fromString(d, Qt::ISODate);
        good = d.isEmpty() || date.isValid();
        result = date;
        break;
    }
    case QMetaType::QTime: {
        const QString d = t.trimmed();
        const QTime time = d == currentDateTimeMarker() ? QTime::currentTime()
                                                        : QTime::fromString(d, Qt::ISODateWithMs);
        good = d.isEmpty() || time.isValid();
        result = time;
        break;
    }
    case QMetaType::QStringList:
        result = jsonFromText(t, false, &good);
        break;
    case QMetaType::QVariantMap:
        result = jsonFromText(t, true, &good);
        break;
    default:
        result = t;
        good = type.isValid() && result.convert(type);
        break;
    }
    if (ok)
        *ok = good;
    return good ? result : QVariant();
}

QVariant SettingsValueText::convert(const QVariant &value, QMetaType type,
                                    const QMetaEnum &enumerator, bool *ok)
{
    if (value.metaType() == type && !(type.flags() & QMetaType::IsEnumeration)) {
        if (ok)
            *ok = true;
        return value;
    }
    const bool isEnum = enumerator.isValid() || (type.flags() & QMetaType::IsEnumeration);
    const int id = value.metaType().id();
    // Texts go through the file conversion, so that "true", "#ff0000" or a key name mean the
    // same here as in a settings file.
    if (id == QMetaType::QString || id == QMetaType::QByteArray) {
        if (type.id() != QMetaType::QByteArray || id == QMetaType::QString)
            return fromText(value.toString(), type, enumerator, ok);
    }
    if (isEnum) {
        bool good = false;
        const int v = value.toInt(&good);
        QString key = QString::number(v);
        if (good)
            return fromText(key, type, enumerator, ok);
        if (ok)
            *ok = false;
        return {};
    }
    if (isNumeric(type) && value.canConvert<double>()) {
        // Go through the text form, which checks the range of the target type.
        bool good = false;
        const double d = value.toDouble(&good);
        if (good && std::isfinite(d)) {
            const QString text = type.id() == QMetaType::Double || type.id() == QMetaType::Float
                                     ? QString::number(d, 'g', QLocale::FloatingPointShortest)
                                     : value.toString();
            return fromText(text, type, enumerator, ok);
        }
        if (ok)
            *ok = false;
        return {};
    }
    QVariant result = value;
    const bool good = result.convert(type);
    if (ok)
        *ok = good;
    return good ? result : QVariant();
}
