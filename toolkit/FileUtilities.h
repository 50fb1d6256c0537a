#pragma once

#include <QByteArray>
#include <QString>

// File helpers for data the user cares about.
class FileUtilities
{
public:
    // Replaces the file with the given bytes through a temporary file in the same folder, so a
    // crash or a full disk leaves either the old file or the new one, never a mix. On failure
    // the reason goes to error (when given) and the old file is untouched.
    static bool writeAtomically(const QString &path, const QByteArray &data,
                                QString *error = nullptr);

    // Copies the file to path + suffix, so that a file we cannot use is kept for a person to look
    // at before it gets overwritten. An earlier copy is never replaced: the next one is
    // path + ".2" + suffix, then ".3", and so on. Returns the path of the copy, or an empty text
    // when nothing could be copied.
    static QString keepAside(const QString &path, const QString &suffix);
};
