#include "storage/DecimalText.h"

#include <QLocale>
#include <QString>

#include <charconv>
#include <cmath>
#include <cstring>

namespace {
// Below this a spreadsheet itself turns to the exponent form, and a plain decimal would be mostly
// zeros; from the upper bound on a double no longer carries every digit of a plain integer.
constexpr double kPlainFrom = 1e-9;
constexpr double kPlainBelow = 1e15;
} // namespace

int DecimalText::write(double value, char *out)
{
    if (!std::isfinite(value))
        return 0;
    const double magnitude = std::fabs(value);
    if (magnitude == 0.0) {
        // A negative zero (a rounded tiny negative reading) is shown as a plain 0.
        out[0] = '0';
        return 1;
    }
    if (magnitude >= kPlainFrom && magnitude < kPlainBelow) {
        // The shortest text in fixed form that reads back as the same double.
        const std::to_chars_result r =
            std::to_chars(out, out + kMaxLength, value, std::chars_format::fixed);
        return r.ec == std::errc() ? int(r.ptr - out) : 0;
    }
    // Rare values outside the plain range keep the text they have always had.
    const QByteArray text =
        QString::number(value, 'g', QLocale::FloatingPointShortest).toLatin1().left(kMaxLength);
    std::memcpy(out, text.constData(), size_t(text.size()));
    return int(text.size());
}

int DecimalText::write(qlonglong value, char *out)
{
    const std::to_chars_result r = std::to_chars(out, out + kMaxLength, value);
    return int(r.ptr - out);
}

int DecimalText::write(qulonglong value, char *out)
{
    const std::to_chars_result r = std::to_chars(out, out + kMaxLength, value);
    return int(r.ptr - out);
}

QByteArray DecimalText::of(double value)
{
    char buffer[kMaxLength];
    return QByteArray(buffer, write(value, buffer));
}
