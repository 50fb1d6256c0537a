#pragma once

#include <QByteArray>
#include <QString>

class QSaveFile;

// File helpers for data the user cares about.
class FileUtilities
{
public:
    // Replaces the file with the given bytes through a temporary file in the same folder, so a
    // crash or a full disk leaves either the old file or the new one, never a mix. On failure
    // the reason goes to error (when given) and the old file is untouched.
    static bool writeAtomically(const QString &path, const QByteArray &data,
                                QString *error = nullptr);

    // Puts a written QSaveFile into place, or throws it away when any write failed. The Qt we
    // build against reports success from commit() on a full disk and then renames an empty file
    // over the old one, so the buffer is flushed and the error state read before committing.
    static bool commitSaveFile(QSaveFile &file, QString *error = nullptr);

    // Asks the system to put the file's (or the folder's entries') bytes on the disk now, so a
    // power cut after a rename cannot leave a name pointing at nothing. True when done (or when
    // the system has no such call).
    static bool syncFile(const QString &path);
    static bool syncFolder(const QString &folder);

    // Renames `from` to `to` only when `to` does not exist, checked by the system in the same
    // step, so two programs saving at once cannot replace each other's file.
    static bool renameNoReplace(const QString &from, const QString &to, QString *error = nullptr);

    // Copies the file to path + suffix, so that a file we cannot use is kept for a person to look
    // at before it gets overwritten. An earlier copy is never replaced: the next one is
    // path + ".2" + suffix, then ".3", and so on. Returns the path of the copy, or an empty text
    // when nothing could be copied.
    static QString keepAside(const QString &path, const QString &suffix);
};
