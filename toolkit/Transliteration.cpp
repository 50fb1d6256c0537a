#include "toolkit/Transliteration.h"

namespace {
// а б в г д е ж з и й к л м н о п р с т у ф х ц ч ш щ ъ ы ь э ю я, in Unicode order.
const char *const kRussian[] = {"a",  "b",  "v",  "g",    "d", "e", "zh", "z", "i",  "y", "k",
                                "l",  "m",  "n",  "o",    "p", "r", "s",  "t", "u",  "f", "kh",
                                "ts", "ch", "sh", "shch", "",  "y", "",   "e", "yu", "ya"};

// The Latin spelling of one Russian letter, capitalised like the letter. False for a character
// that is not one (it may be a Ukrainian or Serbian letter, handled below).
bool russian(QChar c, QString *latin)
{
    const char16_t u = c.unicode();
    const bool upper = (u >= 0x0410 && u <= 0x042F) || u == 0x0401;
    if (u >= 0x0430 && u <= 0x044F)
        *latin = QString::fromLatin1(kRussian[u - 0x0430]);
    else if (u >= 0x0410 && u <= 0x042F)
        *latin = QString::fromLatin1(kRussian[u - 0x0410]);
    else if (u == 0x0451 || u == 0x0401)
        *latin = QStringLiteral("yo");
    else
        return false;
    if (upper && !latin->isEmpty())
        (*latin)[0] = latin->at(0).toUpper();
    return true;
}
} // namespace

QString Transliteration::toAscii(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        if (c.unicode() < 0x80) {
            out += c;
            continue;
        }
        QString latin;
        if (russian(c, &latin)) {
            out += latin;
            continue;
        }
        if (c.unicode() == 0x2116) { // №
            out += QStringLiteral("No");
            continue;
        }
        // é, ü, ß and the like: the letter without its marks, when that is ASCII.
        const QString plain = QString(c).normalized(QString::NormalizationForm_KD);
        QString kept;
        for (const QChar p : plain)
            if (p.unicode() < 0x80)
                kept += p;
        out += kept.isEmpty() ? QStringLiteral("?") : kept;
    }
    return out;
}
