#pragma once

#include <QString>

// Plain ASCII for places that only take ASCII, such as the identification fields of an EDF+
// header that other programs read. Russian letters become their usual Latin spelling
// ("Крыса 12" reads "Krysa 12"), accented Latin letters lose their accents, and anything else
// that has no ASCII form becomes "?", so that a person can still match the text with the original.
class Transliteration
{
public:
    static QString toAscii(const QString &text);
};
