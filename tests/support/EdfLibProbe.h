#pragma once

#include <QList>
#include <QPair>
#include <QString>

// A recording read straight through EDFlib's own calls, not through the program's reader, so a
// test compares what the library itself finds in the file.
namespace EdfLibProbe {
// Every digital sample of every signal, signal after signal; empty when the file cannot be read.
QList<QList<int>> digitalSamples(const QString &path);
// Every mark as (text, onset in ms), in file order; `ok` false when the file cannot be read.
QList<QPair<QString, qint64>> marks(const QString &path, bool *ok = nullptr);
// The onsets of the marks with this text.
QList<qint64> onsetsOf(const QString &path, const QString &text);
} // namespace EdfLibProbe
