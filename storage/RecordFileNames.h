#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

// How the files of one record are named in a records folder: "<base>.edf" with the recording,
// "<base>.exp" with its properties, and "<base>.edf.part" while a recording is being written.
// Saving a measurement and importing a file pick a free base name the same way: the wanted name,
// else "<base> (2)", "<base> (3)" and so on, never one that any of those files already uses.
// Names compare without regard to case, as they do on the file systems the records are also
// read from.
class RecordFileNames
{
public:
    static QString edfSuffix() { return QStringLiteral(".edf"); }
    static QString expSuffix() { return QStringLiteral(".exp"); }
    static QString partSuffix() { return QStringLiteral(".edf.part"); }

    // The names of the folder's files, in lower case, for freeBaseName.
    static QSet<QString> takenNames(const QString &folder);
    // The first of base, "base (2)", "base (3)", ... that none of a record's files uses.
    static QString freeBaseName(const QSet<QString> &takenLowerCase, const QString &base);
    // Marks every file name of a record with this base as used.
    static void take(QSet<QString> &takenLowerCase, const QString &base);
};
