#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// Changes the marks (EDF+ annotations) of a finished EDF+/BDF+ file and nothing else. The file
// is copied byte for byte: header, every sample and the time keeping of each data record stay
// as they are; only the text of the annotation signals is laid out anew. The new file replaces
// the old one in one rename, so a crash or a full disk leaves the old file whole.
class EDFMarkRewriter
{
public:
    using Mark = QPair<QString, qint64>; // text, onset in ms of recorded time

    // Removes every mark whose text is one of `replaced` and adds `marks`. Marks with other
    // texts (from other programs, say) are kept in their order. False, with the reason in
    // `error`, when the file is not a complete EDF+/BDF+ file, has no room for the marks or
    // cannot be written; the file is then unchanged.
    static bool replaceMarks(const QString &path, const QStringList &replaced,
                             const QList<Mark> &marks, QString *error = nullptr);

    // The time-stamped annotation list of one mark: "+12.345", 0x14, the text, 0x14, 0x00. The
    // onset is counted from the file's start (whole seconds): `startTicks` (100 ns units) is the
    // fraction of a second by which the recording starts later, as its first record says.
    static QByteArray markBytes(const QString &text, qint64 onsetMs, qint64 startTicks = 0);
};
